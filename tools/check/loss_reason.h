// Why the module gave no cue for a block.
#ifndef TOOLS_CHECK_LOSS_REASON_H_
#define TOOLS_CHECK_LOSS_REASON_H_

#include "tools/check/block_text.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"

namespace quill::check {

// The reason is read from what the module printed and from the text. The verdict must be one of
// a block that was not delivered.
Finding ExplainLoss(const BlockText& block, const Verdict& verdict);

}  // namespace quill::check

#endif  // TOOLS_CHECK_LOSS_REASON_H_
