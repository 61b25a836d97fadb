#include "gstreamer/muted_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace gstquillcaption {

MutedOutput::MutedOutput(bool muted) {
    const int nowhere = muted ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
    if (nowhere < 0) {
        return;
    }
    std::fflush(stdout);  // what is the program's own
    original_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (original_ >= 0) {
        dup2(nowhere, STDOUT_FILENO);
    }
    close(nowhere);
}

MutedOutput::~MutedOutput() {
    if (original_ >= 0) {
        std::fflush(stdout);  // what is the module's; std::cout writes through to it
        dup2(original_, STDOUT_FILENO);
        close(original_);
    }
}

}  // namespace gstquillcaption
