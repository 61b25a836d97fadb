// quill conform: tries whether a build of the module does all that hosts rely on.
#ifndef TOOLS_CONFORM_CONFORM_COMMAND_H_
#define TOOLS_CONFORM_CONFORM_COMMAND_H_

#include <chrono>
#include <string>
#include <vector>

#include "tools/console/arguments.h"
#include "tools/console/command.h"

namespace quill::conform {

class ConformCommand : public console::Command {
  public:
    explicit ConformCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    console::ExitCode RunTimes(console::Output& output) const;

    std::string module_;                 // empty: the module that belongs to this quill
    std::vector<std::string> patterns_;  // empty: all cases
    std::string case_file_;              // empty: the cases of quill itself
    std::chrono::seconds timeout_;
    bool list_ = false;
    bool failed_only_ = false;
    bool time_ = false;
    bool as_json_ = false;
};

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_CONFORM_COMMAND_H_
