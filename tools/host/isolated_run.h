// Work in a process of its own, so that a crash or a hang of a module is a result and not the end.
#ifndef TOOLS_HOST_ISOLATED_RUN_H_
#define TOOLS_HOST_ISOLATED_RUN_H_

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace quill::host {

// The child's way to its parent.
class Channel {
  public:
    explicit Channel(int descriptor) : descriptor_(descriptor) {}

    // Hands the text to the system before it returns, so that a crash cannot lose it.
    void Write(std::string_view text);

  private:
    int descriptor_;
};

// How the process ended, and all that it had written by then.
struct IsolatedEnd {
    enum class Kind {
        kDone,      // the work returned
        kSignal,    // `number` is the signal
        kExit,      // somebody ended the process; `number` is its status
        kTimedOut,  // it was killed
    };

    Kind kind;
    int number;
    std::string written;
};

// Runs the work in a child process and waits for its end, or kills it when the time is over.
// The child begins as a copy of this process. What the work throws ends the child with kThrown.
// Throws Failure when the system makes no process.
IsolatedEnd RunIsolated(const std::function<void(Channel&)>& work,
                        std::chrono::milliseconds timeout);

// For a process that a module runs in: it ends with its parent and leaves no core.
void PrepareChild();

// How a process ended, by the status that waitpid gave; never kTimedOut.
IsolatedEnd EndOf(int status);

// The exit status of a child whose work threw.
constexpr int kThrown = 71;

// "crashed by SIGSEGV", "exited with status 3", "did not end in time"; empty for kDone.
std::string DescribeEnd(const IsolatedEnd& end);

}  // namespace quill::host

#endif  // TOOLS_HOST_ISOLATED_RUN_H_
