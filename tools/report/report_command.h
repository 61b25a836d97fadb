// quill report: writes a page that shows what a player gets of tracks, and what it does not.
#ifndef TOOLS_REPORT_REPORT_COMMAND_H_
#define TOOLS_REPORT_REPORT_COMMAND_H_

#include <chrono>
#include <cstdint>
#include <string>

#include "tools/console/arguments.h"
#include "tools/console/command.h"
#include "tools/console/track_list.h"
#include "tools/host/run_apart.h"
#include "tools/replay/session.h"
#include "tools/report/track_data.h"

namespace quill::report {

class ReportCommand : public console::Command {
  public:
    explicit ReportCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    void CheckArguments() const;
    console::ExitCode WritePage(console::Output& output) const;
    bool IsComparison() const { return !(against_.empty() && against_module_.empty()); }
    // Returns the worst that kept a track from the page, and keeps the last track that is on it.
    console::ExitCode AddTracks(const std::string& module, Json& tracks, TrackBytes& last) const;
    void AddOther(const std::string& module, Json& tracks, const TrackBytes& first) const;
    // What the parsers of a session were fed.
    static void AddFedTracks(const std::string& module, const replay::Session& session,
                             Json& tracks);

    console::TrackArguments tracks_;
    std::string log_;
    std::string output_file_;
    std::string against_;
    std::string against_module_;
    std::string video_;
    std::string background_;
    PlayOptions options_;
    std::chrono::seconds limit_ = host::kDefaultLimit;
    bool is_played_otherwise_ = false;  // than by default: in other chunks, at another time
    std::string module_;
};

}  // namespace quill::report

#endif  // TOOLS_REPORT_REPORT_COMMAND_H_
