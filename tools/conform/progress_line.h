// How far a long run has come, for somebody who watches a terminal.
#ifndef TOOLS_CONFORM_PROGRESS_LINE_H_
#define TOOLS_CONFORM_PROGRESS_LINE_H_

#include <chrono>
#include <cstddef>
#include <string>

namespace quill {

// One line on standard error, written over itself. Nothing is written when standard error is no
// terminal, nor in the first second.
class ProgressLine {
  public:
    // `what` names the things that are counted: "cases".
    ProgressLine(std::size_t total, std::string what);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { Clear(); }

    // One more is done.
    void Advance();
    // Takes the line away, so that something else can be written there.
    void Clear();

  private:
    std::size_t total_;
    std::string what_;
    bool is_enabled_;
    std::chrono::steady_clock::time_point start_;
    std::size_t done_ = 0;
    std::size_t width_ = 0;  // of the line that is shown
};

}  // namespace quill

#endif  // TOOLS_CONFORM_PROGRESS_LINE_H_
