// What became of each setting of a timing line.
#ifndef TOOLS_CHECK_SETTING_REMARKS_H_
#define TOOLS_CHECK_SETTING_REMARKS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"

namespace quill::check {

// "50,5%" and "12,5%,end", with or without a name, with the point that was meant: no alignment is a
// number. All else as it is.
std::string WithDecimalPoint(std::string setting);

// Has the module read every setting alone, on two cues that differ in everything: a setting that
// changes neither of them is dropped. Settings repeat all over a track, so answers are kept.
class SettingRemarks {
  public:
    // The parser must outlive this. What it was asked before is asked no more.
    explicit SettingRemarks(LoneParser& parser);

    // `settings` is the part of a timing line behind the end time.
    void Examine(std::string_view text, std::string_view settings, std::uint32_t line,
                 Findings& findings);

  private:
    const Findings& AnswerFor(const std::string& item);
    // With what to write instead, and without.
    Findings Ask(const std::string& item);
    Findings FindFaults(const std::string& item);
    // Whether the module takes all of the settings as they are written.
    bool IsTaken(const std::string& settings);
    // What was meant by the setting: write "..."; empty when the module does not take that.
    std::string WriteInstead(const std::string& item);
    const Verdict& AskCueWith(const std::string& settings);

    LoneParser& parser_;
    CueCopy plain_;     // without settings
    CueCopy contrary_;  // with all of them
    std::unordered_map<std::string, Findings> answers_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_SETTING_REMARKS_H_
