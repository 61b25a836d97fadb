// Reads case files. tools/conform/cases/README.md describes how they are written.
#ifndef TOOLS_CONFORM_CASES_CASE_READER_H_
#define TOOLS_CONFORM_CASES_CASE_READER_H_

#include <string>
#include <string_view>
#include <vector>

#include "tools/conform/cases/case.h"

namespace quill::conform {

// The cases of one file, whose name without its ending is their group. Throws Failure, which
// names the file and the line, when something is not written as it should be.
std::vector<Case> ReadCases(const std::string& file, std::string_view text);

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_CASES_CASE_READER_H_
