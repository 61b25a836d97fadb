// Prints what was found, as it is found.
#ifndef TOOLS_CHECK_REPORT_H_
#define TOOLS_CHECK_REPORT_H_

#include <cstddef>
#include <memory>
#include <string>

#include "tools/check/finding.h"
#include "tools/check/sums.h"
#include "tools/console/output.h"

namespace quill::check {

class Report {
  public:
    // The output must outlive the report.
    explicit Report(console::Output& output) : output_(output) {}
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    virtual ~Report() = default;

    void AddFinding(const std::string& track, const Finding& finding);
    // Also sends off what is left of the track's findings.
    void AddSums(const std::string& track, const Sums& sums);
    void AddCode(const Code& code);
    void Flush();

  protected:
    virtual std::string Format(const std::string& track, const Finding& finding) const = 0;
    virtual std::string Format(const std::string& track, const Sums& sums) const = 0;
    virtual std::string Format(const Code& code) const = 0;

  private:
    void Add(const std::string& text);

    console::Output& output_;
    std::string pending_;
};

// "track.vtt:12: lost: invalid start time "abc" [Q101]; write ...", then the sums in words.
std::unique_ptr<Report> MakeTextReport(console::Output& output, bool in_colour);

// One JSON object in ASCII on each line: for each finding one with "code", for each track at its
// end one with "sums".
std::unique_ptr<Report> MakeJsonReport(console::Output& output);

}  // namespace quill::check

#endif  // TOOLS_CHECK_REPORT_H_
