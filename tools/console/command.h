// What main() knows of a subcommand.
#ifndef TOOLS_CONSOLE_COMMAND_H_
#define TOOLS_CONSOLE_COMMAND_H_

#include <string>

#include "tools/console/arguments.h"
#include "tools/console/failure.h"
#include "tools/console/output.h"

namespace quill::console {

// A subcommand adds itself to the command line when it is made, and lives until it has run.
class Command {
  public:
    // The app must outlive the command.
    Command(CLI::App& app, const std::string& name, const std::string& what)
        : command_line_(app, name, what) {}
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    // Whether the user asked for this one. Valid once the command line is parsed.
    bool IsChosen() const { return command_line_.IsChosen(); }
    // Does the work. May throw Failure.
    virtual ExitCode Run(Output& output) = 0;

  protected:
    // To add what the subcommand takes.
    CommandLine& command_line() { return command_line_; }

  private:
    CommandLine command_line_;
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_COMMAND_H_
