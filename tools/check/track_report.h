// The findings of one track on their way out.
#ifndef TOOLS_CHECK_TRACK_REPORT_H_
#define TOOLS_CHECK_TRACK_REPORT_H_

#include <cstdint>
#include <string>
#include <utility>

#include "tools/check/finding.h"
#include "tools/check/report.h"
#include "tools/check/sums.h"
#include "tools/console/progress.h"

namespace quill::check {

// Counts what is found, prints it, and keeps the progress line out of its way.
class TrackReport {
  public:
    // The report and the progress must outlive this.
    TrackReport(std::string name, Report& report, console::Progress& progress)
        : name_(std::move(name)), report_(report), progress_(progress) {}

    Sums& sums() { return sums_; }

    // Findings on the lines behind those that were said before. Throws OutputError.
    void Say(const Findings& findings);
    void Say(const Finding& finding);

    // `done` of `all` bytes. Cheap to call often.
    void ShowProgress(std::uint64_t done, std::uint64_t all);

  private:
    std::string name_;
    Report& report_;
    console::Progress& progress_;
    Sums sums_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_REPORT_H_
