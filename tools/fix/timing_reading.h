// Reads timing lines as people mean them.
#ifndef TOOLS_FIX_TIMING_READING_H_
#define TOOLS_FIX_TIMING_READING_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quill::fix {

// A time, and where it stands in its line.
struct WrittenTime {
    std::size_t begin;
    std::size_t end;
    std::int64_t milliseconds;
    bool has_hours;
    bool has_comma;

    // HH:MM:SS.mmm, or MM:SS.mmm when there are no hours and none were written.
    std::string Canonical() const;
};

struct TimingReading {
    WrittenTime start;
    std::size_t arrow_begin;
    std::size_t arrow_end;
    WrittenTime end;
    std::size_t
        settings_begin;  // of the first character behind the spaces; the line's end for none
};

// Nothing when the line can be read in no way, or in more than one.
std::optional<TimingReading> ReadTiming(std::string_view line);

// The same for a time that is all of the text but for spaces.
std::optional<WrittenTime> ReadTime(std::string_view text);

// Two digits in each field and three in the last: valid without asking.
bool IsUsualTime(std::string_view text);

}  // namespace quill::fix

#endif  // TOOLS_FIX_TIMING_READING_H_
