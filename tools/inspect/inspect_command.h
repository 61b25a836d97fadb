// quill inspect: says what a module is, before and after loading it.
#ifndef TOOLS_INSPECT_INSPECT_COMMAND_H_
#define TOOLS_INSPECT_INSPECT_COMMAND_H_

#include <string>

#include "tools/arguments.h"
#include "tools/command.h"

namespace quill {

class InspectCommand : public Command {
  public:
    explicit InspectCommand(CLI::App& app);

    bool IsChosen() const override;
    ExitCode Run(Output& output) override;

  private:
    CommandLine command_line_;
    std::string module_;  // empty: the module that belongs to this quill
    bool as_json_ = false;
};

}  // namespace quill

#endif  // TOOLS_INSPECT_INSPECT_COMMAND_H_
