// What stands in the text of a delivered cue and was not meant to be shown.
#ifndef TOOLS_CHECK_LINE_REMARKS_H_
#define TOOLS_CHECK_LINE_REMARKS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/block_text.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"

namespace quill::check {

class LineRemarks {
  public:
    // The parser is asked about lines that may be timing lines; it must outlive this.
    explicit LineRemarks(LoneParser& parser) : parser_(parser) {}

    void Examine(const BlockText& block, Findings& findings);

  private:
    // How a timing line is to be written, which is empty when it is fine; nothing for other lines.
    std::optional<std::string> TimesIn(std::string_view text);
    Finding TimesInText(const BlockText& block, std::size_t index, const std::string& instead);

    LoneParser& parser_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_LINE_REMARKS_H_
