// What the module takes on the machine that it runs on.
#ifndef TOOLS_CONFORM_TIMING_H_
#define TOOLS_CONFORM_TIMING_H_

#include <chrono>
#include <string>

#include "tools/console/output.h"

namespace quill::conform {

// Takes the times and prints each as it comes: loading the module and the first cue, then dialogue
// as tracks hold it. Each is taken in a process of its own, and the best of several tries counts.
// Throws Failure when the module breaks, hangs, or delivers other cues than the track holds.
void PrintTimes(console::Output& output, const std::string& module, std::chrono::seconds timeout,
                bool as_json);

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_TIMING_H_
