// quill replay: plays a recorded session into a module again, and says whether all came out the
// same.
#ifndef TOOLS_REPLAY_REPLAY_COMMAND_H_
#define TOOLS_REPLAY_REPLAY_COMMAND_H_

#include <chrono>
#include <cstdint>
#include <string>

#include "tools/console/arguments.h"
#include "tools/console/command.h"
#include "tools/replay/session.h"

namespace quill::replay {

class ReplayCommand : public console::Command {
  public:
    explicit ReplayCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    void CheckUsage() const;
    console::ExitCode Play(const Session& session, console::Output& output) const;
    console::ExitCode Check(const Session& session, console::Output& output) const;
    void WriteTrack(const Session& session) const;
    std::string ModulePath() const;

    std::string log_;
    bool shows_ = false;
    bool writes_case_ = false;
    bool checks_ = false;
    bool keeps_pace_ = false;
    bool as_json_ = false;
    std::string track_;
    std::uint32_t parser_ = 0;  // 0: none was chosen
    std::chrono::seconds timeout_;
    std::string module_;  // empty: the module that belongs to this quill
};

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_REPLAY_COMMAND_H_
