// What was meant by a line that is nearly a timing line.
#ifndef TOOLS_CHECK_MEANT_TIMING_H_
#define TOOLS_CHECK_MEANT_TIMING_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/meant_time.h"

namespace quill::check {

constexpr std::string_view kArrow = "-->";

inline bool HasArrow(std::string_view line) {
    return line.find(kArrow) != std::string_view::npos;
}

// A piece of a line.
struct Place {
    std::string_view In(std::string_view line) const { return line.substr(begin, end - begin); }

    std::size_t begin;
    std::size_t end;
};

struct MeantTiming {
    MeantTime start;
    MeantTime end;
    std::string arrow;  // what stands between the times; empty for nothing but spaces
    std::string text;   // the whole line as it has to be; empty when that would be a guess
    bool has_thousandths = false;  // both times have three digits behind a point or a comma
    bool is_certain = false;       // the text is the only thing that can have been meant

    // Where all that stands in the line.
    Place start_place;
    Place arrow_place;
    Place end_place;
    std::size_t settings_begin;  // the line's size when there are none
};

// For a line that begins with a time, has an arrow or what stands for one, and another time; or
// with an arrow and anything. The verdict is the module's: ask it for the text.
std::optional<MeantTiming> ReadMeantTiming(std::string_view line);

// Whether a player knows a setting of that name, once it is in small letters.
bool IsSettingName(std::string_view name);

// What stands where the settings do and is no setting, but words of the cue's text; or nothing. A
// single word may be meant for a setting.
std::string_view TextAmongSettings(std::string_view settings, std::size_t fewest_words = 2);

// Two times as they have to be, " --> " between them, and nothing else.
bool IsUsualTiming(std::string_view line);

}  // namespace quill::check

#endif  // TOOLS_CHECK_MEANT_TIMING_H_
