// What was meant by a line that is nearly a timing line.
#ifndef TOOLS_CHECK_MEANT_TIMING_H_
#define TOOLS_CHECK_MEANT_TIMING_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quill::check {

constexpr std::string_view kArrow = "-->";

inline bool HasArrow(std::string_view line) {
    return line.find(kArrow) != std::string_view::npos;
}

struct MeantTiming {
    std::string arrow;  // what stands between the times; empty for nothing but spaces
    std::string text;   // the whole line as it has to be; empty when that would be a guess
    bool has_thousandths = false;  // both times have three digits behind a point or a comma
};

// For a line that begins with a time, has an arrow or what stands for one, and another time; or
// with an arrow and anything. The verdict is the module's: ask it for the text.
std::optional<MeantTiming> ReadMeantTiming(std::string_view line);

}  // namespace quill::check

#endif  // TOOLS_CHECK_MEANT_TIMING_H_
