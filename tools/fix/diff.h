// The changes to a track as a unified diff.
#ifndef TOOLS_FIX_DIFF_H_
#define TOOLS_FIX_DIFF_H_

#include <string>
#include <string_view>

#include "tools/fix/document.h"

namespace quill::fix {

// From the track as it was read to what it is now, with three lines of context; empty when nothing
// has changed. `name` may be any file name.
std::string UnifiedDiff(const std::string& name, std::string_view track, const Document& document);

}  // namespace quill::fix

#endif  // TOOLS_FIX_DIFF_H_
