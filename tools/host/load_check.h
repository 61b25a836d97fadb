// Whether a module can be loaded, before it is tried in processes of its own.
#ifndef TOOLS_HOST_LOAD_CHECK_H_
#define TOOLS_HOST_LOAD_CHECK_H_

#include <chrono>
#include <string>

namespace quill::host {

// Loads and unloads the module in a process of its own. Throws Failure when it cannot even be
// loaded: then nothing that it is tried with would say anything.
void CheckThatItLoads(const std::string& module, std::chrono::milliseconds timeout);

}  // namespace quill::host

#endif  // TOOLS_HOST_LOAD_CHECK_H_
