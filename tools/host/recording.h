// Has what quill does with a module recorded.
#ifndef TOOLS_HOST_RECORDING_H_
#define TOOLS_HOST_RECORDING_H_

#include <string>

namespace quill::host {

// Prepares the guard to pass all calls on to the module, and to record them in the log, which is
// made anew. Returns the file that is to be loaded in the module's place: the guard. Throws Failure
// when the module cannot be loaded, the log cannot be written, or there is no guard.
std::string RecordTo(const std::string& log, const std::string& module);

}  // namespace quill::host

#endif  // TOOLS_HOST_RECORDING_H_
