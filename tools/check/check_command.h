// quill check: says what becomes of every block of a track, and why.
#ifndef TOOLS_CHECK_CHECK_COMMAND_H_
#define TOOLS_CHECK_CHECK_COMMAND_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/arguments.h"
#include "tools/check/report.h"
#include "tools/check/sums.h"
#include "tools/command.h"
#include "tools/diagnostics_capture.h"
#include "tools/module_handle.h"

namespace quill {

class CheckCommand : public Command {
  public:
    explicit CheckCommand(CLI::App& app);

    bool IsChosen() const override;
    ExitCode Run(Output& output) override;

  private:
    std::unique_ptr<Report> MakeReport(Output& output) const;
    ExitCode PrintCodes(Report& report) const;
    ExitCode CheckTracks(Report& report) const;
    Sums Check(const ModuleHandle& module, DiagnosticsCapture& capture, const std::string& track,
               Report& report) const;
    bool Fails(const Sums& sums) const;

    CommandLine command_line_;
    std::vector<std::string> tracks_;
    bool in_json_ = false;
    bool only_codes_ = false;
    bool quiet_ = false;
    std::optional<Severity> fail_on_ = Severity::kLost;
    std::optional<std::uint32_t> chunk_size_;
    std::string module_;
};

}  // namespace quill

#endif  // TOOLS_CHECK_CHECK_COMMAND_H_
