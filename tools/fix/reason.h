// Why something is left to a person.
#ifndef TOOLS_FIX_REASON_H_
#define TOOLS_FIX_REASON_H_

#include <string>

#include "tools/check/code_filter.h"
#include "tools/check/finding.h"
#include "tools/fix/document.h"

namespace quill::fix {

// Whether a finding in the outcome is said to be left: what is lost or changed, and remarks on what
// quill fix fixes elsewhere.
bool IsLeft(const check::Finding& finding);

// Why it was not fixed. The filter is the one by which was fixed.
std::string WhyLeft(const check::Finding& finding, const Document& outcome,
                    const check::CodeFilter& filter);

}  // namespace quill::fix

#endif  // TOOLS_FIX_REASON_H_
