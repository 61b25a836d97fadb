// The command line as a whole, of which each subcommand has its part.
#ifndef TOOLS_CONSOLE_PROGRAM_H_
#define TOOLS_CONSOLE_PROGRAM_H_

#include <functional>
#include <memory>
#include <string>

#include "tools/console/arguments.h"
#include "tools/console/failure.h"
#include "tools/console/output.h"

namespace quill::console {

class Program {
  public:
    Program(const std::string& name, const std::string& what, const std::string& version);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    // For the subcommands to add themselves to.
    CLI::App& app() { return *app_; }

    // False when help or the version was asked for, which is written then. Throws Failure for a
    // mistake of the user's.
    bool Parse(int argc, char** argv, Output& output);

  private:
    std::unique_ptr<CLI::App> app_;
};

// Does the work of a whole run. What that throws is said on standard error, and is the exit code.
ExitCode RunToEnd(const std::function<ExitCode()>& work);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_PROGRAM_H_
