// Shows on a terminal how far long work has come.
#ifndef TOOLS_CONSOLE_PROGRESS_H_
#define TOOLS_CONSOLE_PROGRESS_H_

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace quill::console {

// Between two lines of most commands.
constexpr std::chrono::milliseconds kProgressPause(200);

// One line on standard error, written over and over, and only when that is a terminal and the
// work has taken more than a second. Wipe it away before anything else is printed.
class Progress {
  public:
    // What shows a line, over the one before; an empty one wipes that away.
    using Painter = std::function<void(std::string_view line)>;

    // At least `pause` lies between two lines.
    Progress(bool wanted, std::chrono::milliseconds pause);
    // The same, shown by another.
    Progress(bool wanted, std::chrono::milliseconds pause, Painter painter);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Wipe(); }

    bool wanted() const { return wanted_; }
    // Whether it is time for a line, which Show must then be given. Cheap to ask often.
    bool IsDue();
    // What is not printable in the line is escaped.
    void Show(const std::string& line);
    void Wipe();

  private:
    using Clock = std::chrono::steady_clock;

    Painter painter_;
    bool wanted_;
    bool shown_ = false;
    std::chrono::milliseconds pause_;
    Clock::time_point next_;
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_PROGRESS_H_
