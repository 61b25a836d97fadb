// How what was found is written.
#ifndef TOOLS_CHECK_REPORT_H_
#define TOOLS_CHECK_REPORT_H_

#include <memory>
#include <string>

#include "tools/check/block_note.h"
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

    // What stands before and behind everything else; `complete` when all tracks were checked.
    virtual std::string Beginning() const { return ""; }
    virtual std::string Ending(bool /*complete*/) const { return ""; }
    // What every finding and failure begins with, but for the first of all.
    virtual std::string Joint() const { return ""; }

    virtual std::string Format(const std::string& track, const Fold& fold) const = 0;
    // For formats that say what became of each block.
    virtual std::string Format(const std::string& /*track*/, const BlockNote& /*note*/) const {
        return "";
    }
    // For formats that list the codes.
    virtual std::string Format(const Code& /*code*/) const { return ""; }
    // Empty when the format leaves the sums out: in text those of a track without a finding, unless
    // they are wanted in full.
    virtual std::string Format(const std::string& /*track*/, const Sums& /*sums*/,
                               bool /*in_full*/) const {
        return "";
    }
    virtual std::string Format(const Total& /*total*/, bool /*in_full*/) const { return ""; }
    // A track that could not be checked, for formats that programs read; standard error says it
    // too.
    virtual std::string FormatFailure(const std::string& /*track*/,
                                      const std::string& /*why*/) const {
        return "";
    }
};

// "track.vtt:12:1: lost: invalid start time "abc" [Q101]; write ...", then the sums in words. A
// finding about a line as a whole has no column.
std::unique_ptr<Report> MakeTextReport(bool in_colour);

// One JSON object in ASCII on each line: for each finding one with "code", for each block, where
// those are wanted, one with "block", for each track at its end one with "sums", at the very end
// one with "total".
std::unique_ptr<Report> MakeJsonReport();

// Commands in the log of a workflow at GitHub, which make annotations: "::error file=...".
std::unique_ptr<Report> MakeGithubReport();

// A document in the Static Analysis Results Interchange Format, SARIF 2.1.0.
std::unique_ptr<Report> MakeSarifReport();

// How bad it is in formats that know errors, warnings and something less, which is given.
const char* LevelOf(Severity severity, const char* less);

// The finding as people read it: its message, and how many more were lost with the same chunk or,
// for a fold of the rest, are like it.
std::string InWords(const Fold& fold);
// What can be done about it.
std::string Advice(const Fold& fold);

}  // namespace quill::check

#endif  // TOOLS_CHECK_REPORT_H_
