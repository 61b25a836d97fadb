// What is wrong with a time that the module rejects, and the time that was meant.
#ifndef TOOLS_CHECK_MEANT_TIME_H_
#define TOOLS_CHECK_MEANT_TIME_H_

#include <string>
#include <string_view>

namespace quill::check {

struct MeantTime {
    std::string complaint;   // the first fault, "it has no milliseconds"; empty when none is known
    bool has_comma = false;  // for the point before the milliseconds
    std::string text;        // empty when that would be a guess
};

// The verdict is the module's: ask it for the text.
MeantTime ReadMeantTime(std::string_view time);

}  // namespace quill::check

#endif  // TOOLS_CHECK_MEANT_TIME_H_
