// Cue times as people and subtitle files write them.
#ifndef TOOLS_CONSOLE_CUE_TIME_H_
#define TOOLS_CONSOLE_CUE_TIME_H_

#include <string>

namespace quill::console {

// HH:MM:SS and three digits after the mark, with more digits of hours where they are needed and
// a minus sign before a negative time. Rounded to the nearest millisecond; a time that rounds to
// zero has no sign. "nan", "inf" or "-inf" for what is no time.
std::string FormatTime(double seconds, char decimal_mark);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_CUE_TIME_H_
