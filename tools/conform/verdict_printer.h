// Prints the verdicts of a conformance run as they come, and the count at the end.
#ifndef TOOLS_CONFORM_VERDICT_PRINTER_H_
#define TOOLS_CONFORM_VERDICT_PRINTER_H_

#include <array>
#include <cstddef>
#include <string>

#include "tools/conform/case_runner.h"
#include "tools/conform/cases/case.h"
#include "tools/console/output.h"

namespace quill::conform {

class VerdictPrinter {
  public:
    // The output must outlive the printer.
    VerdictPrinter(console::Output& output, bool as_json, bool failed_only)
        : output_(output), as_json_(as_json), failed_only_(failed_only) {}

    void Print(const Case& one, const Verdict& verdict);
    void PrintCount();

    bool all_passed() const { return Count(Outcome::kPassed) == total_; }

  private:
    std::size_t Count(Outcome outcome) const { return counts_[static_cast<std::size_t>(outcome)]; }

    console::Output& output_;
    bool as_json_;
    bool failed_only_;
    std::array<std::size_t, 4> counts_ = {};  // by outcome
    std::size_t total_ = 0;
};

// Prints the cases themselves, with their reasons.
void PrintCaseList(console::Output& output, const std::vector<Case>& cases, bool as_json);

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_VERDICT_PRINTER_H_
