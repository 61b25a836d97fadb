// Runs whatever drives a module in a process of its own, and says what a module did that ended it.
#ifndef TOOLS_HOST_RUN_APART_H_
#define TOOLS_HOST_RUN_APART_H_

#include <chrono>
#include <functional>
#include <string>

#include "tools/console/arguments.h"
#include "tools/console/failure.h"
#include "tools/host/isolated_run.h"

namespace quill::host {

// How long a call into the module may take, unless the user says otherwise.
constexpr std::chrono::seconds kDefaultLimit(10);

// Adds --timeout to a command that runs apart.
void AddLimitOption(console::CommandLine& line, std::chrono::seconds& limit);

// Does the work of a command, all of it, in a child process with the same standard streams, and
// returns the exit code that the work came to. When the module has ended the process before that,
// or a call into it took longer than the limit, that is said and is kExitModule. A signal of the
// user's ends both processes.
console::ExitCode RunApart(std::chrono::seconds limit,
                           const std::function<console::ExitCode()>& work);

// What the module did to a process that ended early, as a whole message. Plays the track that was
// played there once more, block by block and in a process of its own, to find the one that does it.
std::string DescribeBreak(const CallNote& note, const IsolatedEnd& end);

}  // namespace quill::host

#endif  // TOOLS_HOST_RUN_APART_H_
