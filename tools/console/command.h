// What main() knows of a subcommand.
#ifndef TOOLS_CONSOLE_COMMAND_H_
#define TOOLS_CONSOLE_COMMAND_H_

#include "tools/console/failure.h"
#include "tools/console/output.h"

namespace CLI {
class App;
}

namespace quill::console {

// A subcommand adds itself to the command line when it is made, and lives until it has run.
class Command {
  public:
    virtual ~Command() = default;
    // Whether the user asked for this one. Valid once the command line is parsed.
    virtual bool IsChosen() const = 0;
    // Does the work. May throw Failure.
    virtual ExitCode Run(Output& output) = 0;
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_COMMAND_H_
