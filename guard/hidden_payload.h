// A cue's text with its markup, hidden as it comes.
#pragma once

#include "guard/hidden_text.h"

namespace guard {

/// Follows the markup as the module does, so that what it makes of the hidden text is what
/// TextHider makes of the text.
class PayloadHider {
  public:
    char hide(char byte);

  private:
    enum class State : unsigned char {
        kText,
        kReference,  ///< behind a "&"
        kTag,        ///< behind a "<"
        kName,
        kClasses,
        kAnnotation,
        kEndTag,
        kStamp,
    };

    char hide_in_text(char byte);
    char hide_in_reference(char byte);
    char hide_in_tag(char byte);
    char hide_in_name(char byte);
    char hide_in_classes(char byte);
    char hide_up_to_bracket(char byte);

    State m_state = State::kText;
    TextHider m_text;
    TextHider m_before_reference;
    TagNameHider m_name;
    TimeHider m_stamp;
};

}  // namespace guard
