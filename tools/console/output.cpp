#include "tools/console/output.h"

#include <unistd.h>

#include <cerrno>

namespace quill::console {

OutputError::OutputError(int error_number, std::size_t written)
    : Failure(kExitUsage, "standard output: " + ErrorText(error_number)),
      error_number_(error_number),
      written_(written) {}

bool OutputError::closed() const {
    return error_number_ == EPIPE;
}

Output::Output() : descriptor_(DuplicatePrivately(STDOUT_FILENO)) {
    if (!descriptor_.valid()) {
        throw OutputError(errno, 0);
    }
}

void Output::Write(std::string_view bytes) {
    const std::size_t written = WriteFully(descriptor_.get(), bytes);
    if (written < bytes.size()) {
        throw OutputError(errno, written);
    }
}

}  // namespace quill::console
