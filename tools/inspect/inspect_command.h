// quill inspect: says what a module is, before and after loading it, and what a board has of it.
#ifndef TOOLS_INSPECT_INSPECT_COMMAND_H_
#define TOOLS_INSPECT_INSPECT_COMMAND_H_

#include <string>

#include "tools/console/arguments.h"
#include "tools/console/command.h"

namespace quill::inspect {

class InspectCommand : public console::Command {
  public:
    explicit InspectCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    std::string module_;   // empty: the module that belongs to this quill
    std::string sysroot_;  // empty: no board is asked about
    bool as_json_ = false;
};

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_INSPECT_COMMAND_H_
