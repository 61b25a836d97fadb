// The findings of one track on their way out.
#ifndef TOOLS_CHECK_TRACK_REPORT_H_
#define TOOLS_CHECK_TRACK_REPORT_H_

#include <cstdint>
#include <string>
#include <utility>

#include "tools/check/block_note.h"
#include "tools/check/code_filter.h"
#include "tools/check/finding.h"
#include "tools/check/sums.h"
#include "tools/console/progress.h"

namespace quill::check {

// Takes findings in about the order of their lines.
class FindingSink {
  public:
    virtual ~FindingSink() = default;
    virtual void Add(const Finding& finding) = 0;
    // Before the findings on the block's lines.
    virtual void Note(const BlockNote& /*note*/) {}
};

// Counts what is found, hands it on, and keeps the progress line out of its way.
class TrackReport {
  public:
    // The sink and the progress must outlive this. What the filter holds back is as if it were not
    // there.
    TrackReport(std::string name, FindingSink& sink, console::Progress& progress,
                CodeFilter filter = {})
        : name_(std::move(name)), sink_(sink), progress_(progress), filter_(std::move(filter)) {}

    Sums& sums() { return sums_; }

    // Findings on the lines behind those that were said before. Throws what the sink throws.
    void Say(const Findings& findings);
    void Say(const Finding& finding);
    void Note(const BlockNote& note) { sink_.Note(note); }

    // `done` of `all` bytes. Cheap to call often.
    void ShowProgress(std::uint64_t done, std::uint64_t all);

  private:
    std::string name_;
    FindingSink& sink_;
    console::Progress& progress_;
    CodeFilter filter_;
    Sums sums_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_REPORT_H_
