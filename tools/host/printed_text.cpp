#include "tools/host/printed_text.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "tools/console/failure.h"

namespace quill::host {

PrintedText::PrintedText() : file_(console::UnnamedFile()) {
    if (!file_.valid() || dup2(file_.get(), STDOUT_FILENO) < 0) {
        throw console::Failure(console::kExitUsage,
                               "no file for what the module prints: " + console::ErrorText(errno));
    }
}

std::string PrintedText::Take() {
    std::fflush(stdout);
    const off_t size = lseek(file_.get(), 0, SEEK_CUR);
    std::string text(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    const ssize_t count = pread(file_.get(), text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    // Descriptor 1 shares the file's position.
    if (ftruncate(file_.get(), 0) == 0) {
        lseek(file_.get(), 0, SEEK_SET);
    }
    return text;
}

}  // namespace quill::host
