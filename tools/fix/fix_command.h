// quill fix: writes the track that says the same and arrives whole.
#ifndef TOOLS_FIX_FIX_COMMAND_H_
#define TOOLS_FIX_FIX_COMMAND_H_

#include <chrono>
#include <string>

#include "tools/console/arguments.h"
#include "tools/console/command.h"
#include "tools/console/track_list.h"
#include "tools/fix/fixer.h"
#include "tools/fix/source.h"
#include "tools/fix/track_fixer.h"
#include "tools/host/run_apart.h"

namespace quill::fix {

class FixCommand : public console::Command {
  public:
    explicit FixCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    void CheckArguments() const;
    console::ExitCode FixTracks(console::Output& output);
    console::ExitCode Fix(const std::string& track, TrackFixer& fixer,
                          console::Output& output) const;
    void Write(const std::string& track, const std::string& text, bool changed,
               console::Output& output) const;
    std::string Describe(const Source& source, const FixedTrack& fixed) const;

    console::TrackArguments tracks_;
    std::string output_file_;
    bool in_place_ = false;
    bool diff_ = false;
    bool dry_run_ = false;
    bool all_ = false;
    bool quiet_ = false;
    check::CodeFilter filter_;
    std::string encoding_;
    std::chrono::seconds limit_ = host::kDefaultLimit;
    std::string module_;
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_FIX_COMMAND_H_
