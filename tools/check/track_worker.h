// Checks tracks in a process of its own.
#ifndef TOOLS_CHECK_TRACK_WORKER_H_
#define TOOLS_CHECK_TRACK_WORKER_H_

#include <string>

#include "tools/check/sums.h"
#include "tools/check/track_checker.h"
#include "tools/console/failure.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/job_pool.h"
#include "tools/host/module_handle.h"

namespace quill::check {

// What becomes of a track, as it gets from one process to the other.
struct Outcome {
    std::string ToBytes() const;
    static Outcome FromBytes(const std::string& bytes);

    console::ExitCode code = console::kExitDone;  // else the track could not be checked
    Sums sums{};
    std::string failure{};  // why
};

class TrackWorker : public host::JobWorker {
  public:
    // Loads the module. The options must outlive the worker.
    TrackWorker(const std::string& module, const CheckOptions& options)
        : capture_(host::DiagnosticsCapture::Mode::kCollect),
          module_(module),
          options_(options),
          checker_(module_, capture_, options) {}

    // The job is the name of a track, the result an Outcome.
    std::string Do(const std::string& job, host::JobOutput& output) override;

  private:
    host::DiagnosticsCapture capture_;
    host::ModuleHandle module_;
    const CheckOptions& options_;
    TrackChecker checker_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_WORKER_H_
