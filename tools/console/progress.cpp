#include "tools/console/progress.h"

#include <unistd.h>

#include <utility>

#include "tools/console/descriptor.h"
#include "tools/console/escape.h"

namespace quill::console {
namespace {

constexpr std::chrono::seconds kPatience(1);

void PaintOnStandardError(std::string_view line) {
    constexpr char kWipe[] = "\r\x1B[K";
    WriteFully(STDERR_FILENO, kWipe + Escape(line, LineFeeds::kEscape));
}

}  // namespace

Progress::Progress(bool wanted, std::chrono::milliseconds pause)
    : Progress(wanted, pause, PaintOnStandardError) {}

Progress::Progress(bool wanted, std::chrono::milliseconds pause, Painter painter)
    : painter_(std::move(painter)),
      wanted_(wanted && isatty(STDERR_FILENO) == 1),
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
    painter_(line);
    shown_ = true;
}

void Progress::Wipe() {
    if (shown_) {
        painter_("");
        shown_ = false;
    }
}

}  // namespace quill::console
