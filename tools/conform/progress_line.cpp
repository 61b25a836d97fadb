#include "tools/conform/progress_line.h"

#include <unistd.h>

#include <utility>

#include "tools/descriptor.h"

namespace quill {

ProgressLine::ProgressLine(std::size_t total, std::string what)
    : total_(total),
      what_(std::move(what)),
      is_enabled_(isatty(STDERR_FILENO) != 0),
      start_(std::chrono::steady_clock::now()) {}

void ProgressLine::Advance() {
    ++done_;
    if (!is_enabled_ || std::chrono::steady_clock::now() - start_ < std::chrono::seconds(1)) {
        return;
    }
    const std::string line = std::to_string(done_) + " of " + std::to_string(total_) + " " + what_;
    width_ = line.size();
    WriteFully(STDERR_FILENO, "\r" + line);
}

void ProgressLine::Clear() {
    if (width_ != 0) {
        WriteFully(STDERR_FILENO, "\r" + std::string(width_, ' ') + "\r");
        width_ = 0;
    }
}

}  // namespace quill
