// The guard's voice.
#pragma once

#include "guard/mistakes.h"
#include "guard/text.h"

namespace guard {

/// Writes "quillcaption-guard: ", the line and a line feed to standard error, in one piece,
/// whatever other threads write there. May be called by a signal handler; leaves errno as it was
/// and never raises SIGPIPE.
void write_line(const Line& line);

class LogFile;

/// Where mistakes are written as well; null for nowhere.
void report_to(LogFile* log);

/// Writes the line that tells a mistake. For a signal handler too.
void report_mistake(const MistakeText& mistake, unsigned long call, const Line& line);

}  // namespace guard
