// The codes of quill check: each names one thing that can happen to a track.
#ifndef TOOLS_CHECK_CODES_H_
#define TOOLS_CHECK_CODES_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quill::check {

enum class Severity { kRemark, kChanged, kLost };

// "lost", "changed" or "remark".
const char* SeverityName(Severity severity);

// What is lost by a finding: a cue, a line that makes none of its own, or the whole track.
enum class Subject { kCue, kLine, kTrack };

// A code keeps its number and its meaning for good: filters and notes of authors name it.
struct Code {
    const char* number;  // "Q101"
    Severity severity;
    const char* name;   // "start-time"
    const char* cause;  // what happened, one sentence without its full stop
    const char* hint;   // what the author can do
    Subject lost = Subject::kCue;
};

// The whole table, in the order of the numbers.
const Code* Codes();
std::size_t CodeCount();
constexpr std::size_t kMostCodes = 128;  // that the table may grow to

// The code with that name, which must be one of the table.
const Code& CodeNamed(std::string_view name);

// The code with that number; nullptr for none.
const Code* FindCode(std::string_view number);

// "; did you mean "Q408"?" when a code has a number like that, otherwise empty.
std::string SuggestCode(std::string_view number);

}  // namespace quill::check

#endif  // TOOLS_CHECK_CODES_H_
