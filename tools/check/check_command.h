// quill check: says what becomes of every block of a track, and why.
#ifndef TOOLS_CHECK_CHECK_COMMAND_H_
#define TOOLS_CHECK_CHECK_COMMAND_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/check/report.h"
#include "tools/check/sums.h"
#include "tools/check/track_checker.h"
#include "tools/console/arguments.h"
#include "tools/console/command.h"
#include "tools/console/track_list.h"
#include "tools/host/run_apart.h"

namespace quill::check {

class CheckCommand : public console::Command {
  public:
    explicit CheckCommand(CLI::App& app);

    console::ExitCode Run(console::Output& output) override;

  private:
    enum class Format { kText, kJson, kGithub, kSarif };

    void AddCodeOptions();
    std::unique_ptr<Report> MakeReport() const;
    console::ExitCode ExplainCode(console::Output& output) const;
    CheckOptions Options(const Report& report) const;
    console::ExitCode CheckTracks(const CheckOptions& options, console::Output& output) const;
    bool Fails(const Sums& sums) const;

    console::TrackArguments tracks_;
    Format format_ = Format::kText;
    std::optional<bool> in_colour_;
    bool only_codes_ = false;
    bool all_ = false;
    bool in_full_ = false;
    bool blocks_ = false;
    bool quiet_ = false;
    std::optional<Severity> fail_on_ = Severity::kLost;
    std::optional<std::uint32_t> chunk_size_;
    std::uint32_t video_pts_ = 0;
    std::optional<std::uint32_t> jobs_;
    std::optional<CodePrefixes> selected_;
    std::optional<CodePrefixes> ignored_;
    std::string explained_;
    std::chrono::seconds limit_ = host::kDefaultLimit;
    std::string module_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_CHECK_COMMAND_H_
