// quill cues: prints the cues of a track as a player would get them.
#ifndef TOOLS_CUES_CUES_COMMAND_H_
#define TOOLS_CUES_CUES_COMMAND_H_

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/console/arguments.h"
#include "tools/console/command.h"
#include "tools/cues/cue_format.h"
#include "tools/host/run_apart.h"

namespace quill::cues {

class CuesCommand : public console::Command {
  public:
    explicit CuesCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    console::ExitCode Play(console::Output& output) const;

    std::string track_;
    CueFormatter format_ = FormatAsText;
    std::optional<unsigned int> chunk_size_;
    std::uint32_t video_pts_ = 0;
    std::string record_;  // empty: nothing is recorded
    std::chrono::seconds limit_ = host::kDefaultLimit;
    console::ModuleArguments module_;
};

}  // namespace quill::cues

#endif  // TOOLS_CUES_CUES_COMMAND_H_
