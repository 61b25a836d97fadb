// Work in a process of its own, so that a crash or a hang of a module is a result and not the end.
#ifndef TOOLS_HOST_ISOLATED_RUN_H_
#define TOOLS_HOST_ISOLATED_RUN_H_

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "tools/host/call_note.h"

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

// Runs the work in a child process and waits for its end, or kills it when the time is over, with
// all processes that a module has started in it. Throws Failure when the system makes no process,
// and what the work threw because quill lacks something.
IsolatedEnd RunIsolated(const std::function<void(Channel&)>& work,
                        std::chrono::milliseconds timeout);

// Begins a child process, a copy of this one, that does the work and ends. It ends with its parent,
// leaves no core, and the note is its own. What the work throws ends it with kThrown; of a Failure
// the note holds the text and the code. Throws Failure when the system makes no process.
pid_t StartChild(const SharedNote& note, const std::function<void()>& work);

// Waits for the end of the child, or kills it when one of its calls into the module takes too long.
IsolatedEnd WaitFor(pid_t child, const CallNote& note, std::chrono::seconds limit);

// How a process ended, by the status that waitpid gave; never kTimedOut.
IsolatedEnd EndOf(int status);

// Kills the processes that were left behind by children that have ended. There must be no child
// that still works.
void EndOrphans();

// The exit status of a child whose work threw.
constexpr int kThrown = 71;

// What somebody did who ended the process before the work was done: "crashed by SIGSEGV", "exited
// with status 3", "did not end in time", "ended the process".
std::string DescribeEnd(const IsolatedEnd& end);

}  // namespace quill::host

#endif  // TOOLS_HOST_ISOLATED_RUN_H_
