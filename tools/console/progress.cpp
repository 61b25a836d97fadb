#include "tools/console/progress.h"

#include <unistd.h>

#include "tools/console/descriptor.h"
#include "tools/console/escape.h"

namespace quill::console {
namespace {

constexpr std::chrono::seconds kPatience(1);
constexpr char kWipe[] = "\r\x1B[K";

}  // namespace

Progress::Progress(bool wanted, std::chrono::milliseconds pause)
    : wanted_(wanted && isatty(STDERR_FILENO) == 1),
      pause_(pause),
      next_(Clock::now() + kPatience) {}

bool Progress::IsDue() {
    if (!wanted_) {
        return false;
    }
    const Clock::time_point now = Clock::now();
    if (now < next_) {
        return false;
    }
    next_ = now + pause_;
    return true;
}

void Progress::Show(const std::string& line) {
    WriteFully(STDERR_FILENO, kWipe + Escape(line, LineFeeds::kEscape));
    shown_ = true;
}

void Progress::Wipe() {
    if (shown_) {
        WriteFully(STDERR_FILENO, kWipe);
        shown_ = false;
    }
}

}  // namespace quill::console
