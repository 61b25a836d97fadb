// What is wrong with a time that the module rejects, and the time that was meant.
#ifndef TOOLS_CHECK_MEANT_TIME_H_
#define TOOLS_CHECK_MEANT_TIME_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quill::check {

struct MeantTime {
    std::string complaint;    // the first fault, "it has no milliseconds"; empty when none is known
    bool has_comma = false;   // for the point before the milliseconds, and all else looks right
    std::string text;         // empty when that would be a wild guess
    bool is_certain = false;  // the text is the only thing that can have been meant
    std::int64_t milliseconds = 0;  // what the text comes to
};

// The verdict is the module's: ask it for the text.
MeantTime ReadMeantTime(std::string_view time);

// The size of what may stand before a time and says which one comes, as "Begin: " and "to=" do,
// with the spaces behind it, or of a bracket; 0 for all else.
std::size_t TimeLabelSize(std::string_view text);

// The size of the time that the text begins with when that is MM:SS.mmm or HH:MM:SS.mmm, perhaps
// with a comma for the point; 0 for all else.
std::size_t UsualTimeSize(std::string_view text);

}  // namespace quill::check

#endif  // TOOLS_CHECK_MEANT_TIME_H_
