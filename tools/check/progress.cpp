#include "tools/check/progress.h"

#include <unistd.h>

#include "tools/descriptor.h"
#include "tools/escape.h"

namespace quill {
namespace {

constexpr std::chrono::seconds kPatience(1);
constexpr std::chrono::milliseconds kPause(200);
constexpr char kWipe[] = "\r\x1B[K";

}  // namespace

Progress::Progress(bool wanted)
    : wanted_(wanted && isatty(STDERR_FILENO) == 1), next_(Clock::now() + kPatience) {}

Progress::~Progress() {
    Wipe();
}

void Progress::Show(const std::string& what, std::uint64_t done, std::uint64_t all) {
    if (!wanted_) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (now < next_) {
        return;
    }
    next_ = now + kPause;
    const std::string amount = all == 0 ? std::to_string(done >> 10) + " KiB read"
                                        : std::to_string(done * 100 / all) + "%";
    WriteFully(STDERR_FILENO, kWipe + Escape(what, LineFeeds::kEscape) + ": " + amount);
    shown_ = true;
}

void Progress::Wipe() {
    if (shown_) {
        WriteFully(STDERR_FILENO, kWipe);
        shown_ = false;
    }
}

}  // namespace quill
