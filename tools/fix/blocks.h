// What kind of line or block something is.
#ifndef TOOLS_FIX_BLOCKS_H_
#define TOOLS_FIX_BLOCKS_H_

#include <string_view>

#include "tools/fix/document.h"

namespace quill::fix {

// Digits alone: what numbers a cue, and hardly anything else.
bool IsNumber(std::string_view line);
// Blank, or it only looks so.
bool IsEmptyToTheEye(const Line& line);

}  // namespace quill::fix

#endif  // TOOLS_FIX_BLOCKS_H_
