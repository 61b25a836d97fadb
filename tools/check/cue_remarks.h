// What is worth saying about a cue that is delivered.
#ifndef TOOLS_CHECK_CUE_REMARKS_H_
#define TOOLS_CHECK_CUE_REMARKS_H_

#include "tools/check/block_text.h"
#include "tools/check/finding.h"
#include "tools/check/line_remarks.h"
#include "tools/check/lone_parser.h"
#include "tools/check/order_remarks.h"
#include "tools/check/setting_remarks.h"
#include "tools/check/text_remarks.h"

namespace quill::check {

class CueRemarks {
  public:
    // The parser is asked about settings and references; it must outlive this, and must not be
    // the one that the verdicts come from.
    explicit CueRemarks(LoneParser& parser) : lines_(parser), settings_(parser), text_(parser) {}

    // `verdict` is what the module made of the block, which it delivered.
    void Examine(const BlockText& block, const Verdict& verdict, Findings& findings);

  private:
    LineRemarks lines_;
    OrderRemarks order_;
    SettingRemarks settings_;
    TextRemarks text_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_CUE_REMARKS_H_
