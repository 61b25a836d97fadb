#include "tools/console/descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace quill::console {
namespace {

// Whether a call that failed with errno is worth repeating. A descriptor that some other process
// has set to non-blocking is waited for.
bool MayRepeat(int number, short events) {
    if (errno == EINTR) {
        return true;
    }
    if (errno != EAGAIN) {
        return false;
    }
    pollfd waiting = {number, events, 0};
    return poll(&waiting, 1, -1) > 0 || errno == EINTR;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    Descriptor old(std::exchange(number_, other.Take()));
    return *this;
}

Descriptor::~Descriptor() {
    if (valid()) {
        close(number_);
    }
}

int Descriptor::Take() {
    return std::exchange(number_, -1);
}

Descriptor DuplicatePrivately(int number) {
    return Descriptor(fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

Descriptor UnnamedFile() {
    const Descriptor in_memory(memfd_create("quill diagnostics", MFD_CLOEXEC));
    if (in_memory.valid()) {
        return DuplicatePrivately(in_memory.get());
    }
    char name[] = "/tmp/quill.XXXXXX";
    Descriptor on_disk(mkstemp(name));  // a kernel older than memfd_create
    if (!on_disk.valid()) {
        return on_disk;
    }
    unlink(name);
    return DuplicatePrivately(on_disk.get());
}

int ReadSome(int number, char* buffer, std::size_t capacity) {
    for (;;) {
        const ssize_t count = read(number, buffer, capacity);
        if (count >= 0 || !MayRepeat(number, POLLIN)) {
            return static_cast<int>(count);
        }
    }
}

std::size_t WriteFully(int number, std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(number, bytes.data() + done, bytes.size() - done);
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (!MayRepeat(number, POLLOUT)) {
            break;
        }
    }
    return done;
}

std::string ErrorText(int error_number) {
    return std::generic_category().message(error_number);
}

}  // namespace quill::console
