// All conformance cases, and which of them are wanted.
#ifndef TOOLS_CONFORM_SUITE_H_
#define TOOLS_CONFORM_SUITE_H_

#include <string>
#include <vector>

#include "tools/conform/cases/case.h"

namespace quill::conform {

struct CaseFile {
    const char* name;
    const char* text;
};

// The case files that were compiled in.
const std::vector<CaseFile>& EmbeddedCases();

// The cases of quill itself, group by group.
std::vector<Case> BuiltInCases();

// The cases of a case file of the user's. Throws Failure.
std::vector<Case> CasesOfFile(const std::string& path);

// The cases that a pattern takes: a group's name takes all of it, any other pattern is matched
// with "group/name", where * and ? and [] have their usual meaning and * takes slashes as well.
// All cases when there is no pattern. Throws Failure for a pattern that takes none.
std::vector<Case> SelectCases(std::vector<Case> cases, const std::vector<std::string>& patterns);

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_SUITE_H_
