// How what was found is written.
#ifndef TOOLS_CHECK_REPORT_H_
#define TOOLS_CHECK_REPORT_H_

#include <memory>
#include <string>

#include "tools/check/finding.h"
#include "tools/check/folding.h"
#include "tools/check/sums.h"

namespace quill::check {

// A format. It keeps nothing between two calls: the texts of tracks can be made in any order, and
// put together in that of their names.
class Report {
  public:
    Report() = default;
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    virtual ~Report() = default;

    // Whether repeats are folded, for readers that are no programs.
    virtual bool Folds() const = 0;

    virtual std::string Format(const std::string& track, const Fold& fold) const = 0;
    virtual std::string Format(const Code& code) const = 0;
    // Empty when the format leaves the sums out: in text those of a track without a finding, unless
    // they are wanted in full.
    virtual std::string Format(const std::string& track, const Sums& sums, bool in_full) const = 0;
    virtual std::string Format(const Total& total, bool in_full) const = 0;
    // A track that could not be checked, for formats that programs read; standard error says it
    // too.
    virtual std::string FormatFailure(const std::string& track, const std::string& why) const = 0;
};

// "track.vtt:12: lost: invalid start time "abc" [Q101]; write ...", then the sums in words.
std::unique_ptr<Report> MakeTextReport(bool in_colour);

// One JSON object in ASCII on each line: for each finding one with "code", for each track at its
// end one with "sums", at the very end one with "total".
std::unique_ptr<Report> MakeJsonReport();

}  // namespace quill::check

#endif  // TOOLS_CHECK_REPORT_H_
