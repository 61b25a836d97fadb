// What was meant by a map header that does not do what it says.
#ifndef TOOLS_CHECK_MEANT_MAP_H_
#define TOOLS_CHECK_MEANT_MAP_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quill::check {

constexpr std::string_view kMapName = "X-TIMESTAMP-MAP";

struct MeantMap {
    // About the first value that is not valid, which is that piece of the line; empty when none is
    // known.
    std::string complaint;
    std::string_view fault;
    std::string text;         // the whole line as it has to be; empty when that would be a guess
    bool is_certain = false;  // the text is the only thing that can have been meant
    // For a line with such a text: what it was to do.
    std::uint64_t mpeg_time = 0;  // in ticks
    double shift = 0;             // in seconds
};

// Whether the line begins with the name of the map, in capitals or not, whatever stands for its
// dashes and before it.
bool IsLikeMap(std::string_view line);

// Such a line from there on; npos when there is none in the text.
std::size_t FindMap(std::string_view text);

// For a line that is like a map, or has its two items. The verdict is the module's.
MeantMap ReadMeantMap(std::string_view line);

// The line with another number of ticks.
std::string MapWithTicks(const MeantMap& meant, std::uint64_t ticks);

}  // namespace quill::check

#endif  // TOOLS_CHECK_MEANT_MAP_H_
