// Checks all tracks that quill check was given, and puts together what comes of them.
#ifndef TOOLS_CHECK_TRACK_RUN_H_
#define TOOLS_CHECK_TRACK_RUN_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/sums.h"
#include "tools/check/track_checker.h"
#include "tools/console/failure.h"
#include "tools/console/output.h"
#include "tools/console/progress.h"
#include "tools/console/track_list.h"
#include "tools/host/job_pool.h"

namespace quill::check {

class TrackRun : public host::JobSink {
  public:
    // All that is given must outlive the run.
    TrackRun(const CheckOptions& options, console::Output& output);

    // Writes nothing before the module is loaded. A track that cannot be checked does not keep the
    // others from being checked. Throws OutputError, and Failure when no process can be started or
    // the module cannot be loaded.
    void Run(const std::string& module, std::chrono::seconds limit,
             const console::TrackArguments& tracks, std::size_t processes);

    const Total& total() const { return total_; }
    // The worst that kept a track from being checked.
    console::ExitCode code() const { return code_; }

    void Write(std::string_view bytes) override;
    void Show(std::string_view line) override;
    void End(const std::string& job, const std::string& result) override;
    void Die(const std::string& job, const std::string& why) override;

  private:
    using Clock = std::chrono::steady_clock;

    std::optional<std::string> NextOf(console::TrackList& tracks);
    void Begin();
    void Fail(console::ExitCode code, const std::string& track, const std::string& message);
    void ShowProgress();

    const CheckOptions& options_;
    console::Output& output_;
    console::Progress progress_;
    bool has_begun_ = false;
    std::size_t joint_;  // to be left out of what is written next
    Clock::time_point start_ = Clock::now();
    std::optional<std::uint64_t> count_;  // of all tracks, where that is known
    Total total_;
    console::ExitCode code_ = console::kExitDone;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_RUN_H_
