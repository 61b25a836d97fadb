// The page about the codes, which is compiled in.
#ifndef TOOLS_CHECK_CODE_PAGE_H_
#define TOOLS_CHECK_CODE_PAGE_H_

#include <string>

#include "tools/check/codes.h"

namespace quill::check {

// docs/diagnostics.md.
extern const char kCodePage[];

// What the page says of the code, for a terminal: examples are indented.
std::string Explain(const Code& code);

}  // namespace quill::check

#endif  // TOOLS_CHECK_CODE_PAGE_H_
