// quill cues: prints the cues of a track as a player would get them.
#ifndef TOOLS_CUES_COMMAND_H_
#define TOOLS_CUES_COMMAND_H_

#include <cstdint>
#include <optional>
#include <string>

#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/cue_format.h"

namespace quill {

class CuesCommand : public Command {
  public:
    explicit CuesCommand(CLI::App& app);

    bool IsChosen() const override;
    ExitCode Run(Output& output) override;

  private:
    CommandLine command_line_;
    std::string track_;
    CueFormatter format_ = FormatAsText;
    std::optional<unsigned int> chunk_size_;
    std::uint32_t video_pts_ = 0;
    ModuleArguments module_;
};

}  // namespace quill

#endif  // TOOLS_CUES_COMMAND_H_
