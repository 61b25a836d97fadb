// Shows on a terminal how far long work has come.
#ifndef TOOLS_CONSOLE_PROGRESS_H_
#define TOOLS_CONSOLE_PROGRESS_H_

#include <chrono>
#include <string>

namespace quill::console {

// One line on standard error, written over and over, and only when that is a terminal and the
// work has taken more than a second. Wipe it away before anything else is printed.
class Progress {
  public:
    // At least `pause` lies between two lines.
    Progress(bool wanted, std::chrono::milliseconds pause);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Wipe(); }

    // Whether it is time for a line, which Show must then be given. Cheap to ask often.
    bool IsDue();
    // What is not printable in the line is escaped.
    void Show(const std::string& line);
    void Wipe();

  private:
    using Clock = std::chrono::steady_clock;

    bool wanted_;
    bool shown_ = false;
    std::chrono::milliseconds pause_;
    Clock::time_point next_;
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_PROGRESS_H_
