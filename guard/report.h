// The guard's voice.
#pragma once

#include "guard/text.h"

namespace guard {

/// Writes "quillcaption-guard: ", the line and a line feed to standard error, in one piece,
/// whatever other threads write there. May be called by a signal handler; leaves errno as it was
/// and never raises SIGPIPE.
void write_line(const Line& line);

}  // namespace guard
