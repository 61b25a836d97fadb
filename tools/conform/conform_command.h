// quill conform: tries whether a build of the module does all that hosts rely on.
#ifndef TOOLS_CONFORM_CONFORM_COMMAND_H_
#define TOOLS_CONFORM_CONFORM_COMMAND_H_

#include <chrono>
#include <string>
#include <vector>

#include "tools/arguments.h"
#include "tools/command.h"

namespace quill {

class ConformCommand : public Command {
  public:
    explicit ConformCommand(CLI::App& app);

    bool IsChosen() const override;
    ExitCode Run(Output& output) override;

  private:
    CommandLine command_line_;
    std::string module_;                 // empty: the module that belongs to this quill
    std::vector<std::string> patterns_;  // empty: all cases
    std::string case_file_;              // empty: the cases of quill itself
    std::chrono::seconds timeout_;
    bool list_ = false;
    bool failed_only_ = false;
    bool as_json_ = false;
};

}  // namespace quill

#endif  // TOOLS_CONFORM_CONFORM_COMMAND_H_
