// quill check: says what becomes of every block of a track, and why.
#ifndef TOOLS_CHECK_CHECK_COMMAND_H_
#define TOOLS_CHECK_CHECK_COMMAND_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/check/report.h"
#include "tools/check/sums.h"
#include "tools/console/arguments.h"
#include "tools/console/command.h"
#include "tools/console/track_list.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::check {

class CheckCommand : public console::Command {
  public:
    explicit CheckCommand(CLI::App& app);

    bool IsChosen() const override;
    console::ExitCode Run(console::Output& output) override;

  private:
    std::unique_ptr<Report> MakeReport(console::Output& output) const;
    console::ExitCode PrintCodes(Report& report) const;
    console::ExitCode CheckTracks(Report& report) const;
    Sums Check(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               const std::string& track, Report& report) const;
    bool Fails(const Sums& sums) const;

    console::CommandLine command_line_;
    console::TrackArguments tracks_;
    bool in_json_ = false;
    bool only_codes_ = false;
    bool quiet_ = false;
    std::optional<Severity> fail_on_ = Severity::kLost;
    std::optional<std::uint32_t> chunk_size_;
    std::string module_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_CHECK_COMMAND_H_
