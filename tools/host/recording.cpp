#include "tools/host/recording.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"
#include "tools/host/module_handle.h"

namespace quill::host {
namespace {

// The guard goes on without a log that it cannot write, but the user has asked for one.
void CheckThatItCanBeWritten(const std::string& log) {
    if (log.find("%p") != std::string::npos) {
        throw console::Failure(console::kExitUsage,
                               log +
                                   ": \"%p\" cannot be part of a log's name: the guard writes the "
                                   "process's number for it");
    }
    const console::Descriptor file(
        open(log.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666));
    if (!file.valid()) {
        throw console::Failure(console::kExitUsage, log + ": " + console::ErrorText(errno));
    }
}

}  // namespace

std::string RecordTo(const std::string& log, const std::string& module) {
    std::string guard = FindGuard();
    // What is wrong with a module is said here as anywhere, and the guard needs no words for it.
    static_cast<void>(ModuleHandle(module));
    CheckThatItCanBeWritten(log);
    // A name without a slash would send the loader to the system's library folders.
    const std::string file = module.find('/') == std::string::npos ? "./" + module : module;
    setenv("QUILLCAPTION_GUARD_MODULE", file.c_str(), 1);
    setenv("QUILLCAPTION_GUARD_LOG", log.c_str(), 1);
    return guard;
}

}  // namespace quill::host
