// Reads a payload token by token, for whoever wants to know what it holds.
#pragma once

#include <string_view>

#include "cue/cue.h"

namespace webvtt {

/// What a payload is read into. The reader knows which tags there are and reports those that it
/// does not know; a sink sees only what counts.
class PayloadSink {
  public:
    /// A piece of a run of text, character references replaced. Valid during the call.
    virtual void vText(std::string_view piece) = 0;
    /// The run of text ends; there was one piece of it at least.
    virtual void vEndText() = 0;
    virtual void vOpenTag(Node_Type eType) = 0;
    /// Closes the innermost open tag if it is of this type; otherwise nothing is closed.
    virtual void vCloseTag(Node_Type eType) = 0;
    /// A timestamp tag with a valid time.
    virtual void vTimestamp() = 0;

  protected:
    ~PayloadSink() = default;
};

/// @param cue     its tokenizer is used, which records class names there
/// @param payload must not be empty
/// @param uStop   where reading ends: behind the token that reaches this place. The payload's size,
///                or that of the text in front of a zero byte in it.
/// @return kNoNode when a start tag is not known; the rest of the payload is not read
Outcome read_payload(Cue& cue, std::string_view payload, std::size_t uStop, PayloadSink& sink);

}  // namespace webvtt
