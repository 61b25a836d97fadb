// Runs a case and judges what came of it.
#ifndef TOOLS_CONFORM_CASE_RUNNER_H_
#define TOOLS_CONFORM_CASE_RUNNER_H_

#include <chrono>
#include <string>
#include <vector>

#include "tools/conform/cases/case.h"

namespace quill::conform {

enum class Outcome { kPassed, kFailed, kCrashed, kHung };

struct Verdict {
    Outcome outcome;
    std::vector<std::string> details;  // lines; empty when it passed
};

// Runs the case on the module in a process of its own.
Verdict RunCase(const Case& one, const std::string& module, std::chrono::seconds timeout);

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_CASE_RUNNER_H_
