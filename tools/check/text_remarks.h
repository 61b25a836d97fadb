// What became of the markup and the character references of a cue's text.
#ifndef TOOLS_CHECK_TEXT_REMARKS_H_
#define TOOLS_CHECK_TEXT_REMARKS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "tools/check/block_text.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"

namespace quill::check {

// Finds the places in the text; what happens there is the module's own word: of tags it prints
// what it drops, and of each reference it is asked.
class TextRemarks {
  public:
    // The parser must outlive this.
    explicit TextRemarks(LoneParser& parser) : parser_(parser) {}

    // The block is that of a delivered cue, and `printed` what the module said about it.
    void Examine(const BlockText& block, const std::string& printed, Findings& findings);

  private:
    enum class Reference { kFine, kUnknown, kLost };

    Reference AnswerFor(const std::string& reference);
    std::size_t ExamineReference(std::string_view rest, Findings& findings);
    void ExamineTwice(std::string_view rest, Findings& findings);
    // What to write for a reference that is lost, and for one that is not known.
    std::string WriteLost(const std::string& name);
    std::string WriteUnknown(std::string name);

    LoneParser& parser_;
    std::unordered_map<std::string, Reference> answers_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TEXT_REMARKS_H_
