// Why the module gave no cue for a block.
#ifndef TOOLS_CHECK_LOSS_REASON_H_
#define TOOLS_CHECK_LOSS_REASON_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/check/block_text.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"
#include "tools/check/surroundings.h"

namespace quill::check {

// The reason is read from what the module printed and from the text. The verdict must be one of
// a block that was not delivered. Of what is written instead, `asked` is asked; it must not be the
// parser that the verdict comes from.
Finding ExplainLoss(const BlockText& block, const Verdict& verdict, const Surroundings& around,
                    LoneParser& asked);

// WEBVTT, alone or with something behind it on its line, perhaps behind a byte order mark.
bool IsSignature(std::string_view line);

// Whether the module takes the line for a timing line.
bool IsTimingLine(std::string_view line, LoneParser& asked);

// Where the blank line belongs that makes a cue of the timing line at `index` of its block or of
// the header: "put a blank line above it", or above the identifier there.
std::string BlankLineAbove(std::string_view line_above, std::uint32_t number);

// The fix of a line that is nearly a timing line: write "..."; empty when the module takes none.
std::string WriteInstead(std::string_view line, LoneParser& asked);

}  // namespace quill::check

#endif  // TOOLS_CHECK_LOSS_REASON_H_
