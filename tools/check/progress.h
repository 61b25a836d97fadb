// Shows on a terminal how far long work has come.
#ifndef TOOLS_CHECK_PROGRESS_H_
#define TOOLS_CHECK_PROGRESS_H_

#include <chrono>
#include <cstdint>
#include <string>

namespace quill {

// One line on standard error, written over and over, and only when that is a terminal and the
// work has taken more than a second. It is wiped away before anything else is printed.
class Progress {
  public:
    explicit Progress(bool wanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    // `done` of `all` bytes; an `all` of 0 is one that is not known yet. Cheap to call often.
    void Show(const std::string& what, std::uint64_t done, std::uint64_t all);
    void Wipe();

  private:
    using Clock = std::chrono::steady_clock;

    bool wanted_;
    bool shown_ = false;
    Clock::time_point next_;
};

}  // namespace quill

#endif  // TOOLS_CHECK_PROGRESS_H_
