// The bytes of a file, and the text that they are.
#ifndef TOOLS_FIX_SOURCE_H_
#define TOOLS_FIX_SOURCE_H_

#include <string>

#include "tools/fix/document.h"
#include "tools/fix/fixer.h"

namespace quill::fix {

struct Source {
    std::string name;         // "standard input" for "-"
    std::string bytes;        // as they were read
    std::string text;         // the same unpacked, in UTF-8, and with line ends
    std::vector<Edit> edits;  // what that took
};

// Reads it to its end. `encoding` is what it is written in, empty for UTF-8; UTF-16 and gzip are
// seen without being told. Throws Failure when it cannot be read, or is not in that encoding.
Source ReadSource(const std::string& name, const std::string& encoding,
                  const check::CodeFilter& filter);

}  // namespace quill::fix

#endif  // TOOLS_FIX_SOURCE_H_
