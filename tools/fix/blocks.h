// What kind of line or block something is.
#ifndef TOOLS_FIX_BLOCKS_H_
#define TOOLS_FIX_BLOCKS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fix/document.h"

namespace quill::fix {

constexpr std::size_t kMostLines = 10;  // of a block

// A cue, with an identifier or without, or a block that says what it is.
bool BlockBeginsAt(const std::vector<Line>& lines, std::size_t index);
// "->" for every arrow.
std::string WithoutArrows(std::string_view line);
// Digits alone: what numbers a cue, and hardly anything else.
bool IsNumber(std::string_view line);
// Removes a block of which nothing is to be shown, and the blank line that ends it.
void DropBlock(Document& document, const Range& block);
// Blank, or it only looks so.
bool IsEmptyToTheEye(const Line& line);

}  // namespace quill::fix

#endif  // TOOLS_FIX_BLOCKS_H_
