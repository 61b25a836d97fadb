// A change to the text of a cue.
#ifndef TOOLS_FIX_TEXT_CHANGE_H_
#define TOOLS_FIX_TEXT_CHANGE_H_

#include <cstddef>
#include <string>

namespace quill::fix {

// From some place of the text on.
struct Change {
    std::size_t size;  // of what is changed, in bytes
    std::string replacement;
    std::string shown;  // what a player shows for it
    const char* code;
    bool at_top = false;  // and the cue stands at the top of the screen
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_TEXT_CHANGE_H_
