#include "tools/fix/reason.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace quill::fix {
namespace {

// In the order of the codes, as docs/fix.md has them.
struct Reason {
    const char* codes;  // by their numbers
    const char* words;
};

constexpr Reason kReasons[] = {
    {"Q101 Q102 Q103 Q104", "the time can be read as more than one, or as none"},
    {"Q105 Q106", "it may belong to the cue above, to the one below, or to nobody"},
    {"Q107 Q306", "the cue may have been taken out on purpose"},
    {"Q108", "what stands behind it or below may be the text, or something else"},
    {"Q109", "without the tag no text would be left"},
    {"Q112 Q302", "a zero byte may stand for any character, or for none"},
    {"Q114 Q310 Q312 Q421 Q422", "the two values of the map cannot be told for certain"},
    {"Q115", "the line may be a text"},
    {"Q116", "one of two timing lines may be too many, or the line may be a text"},
    {"Q118", "other lines end in a carriage return alone"},
    {"Q120", "the times of the second track may begin at zero again"},
    {"Q121", "the other value of the map is not there"},
    {"Q122", "the texts may end anywhere on the line"},
    {"Q201 Q202 Q203 Q204 Q205", "it comes when what ends its chunk is corrected"},
    {"Q206 Q207 Q209 Q307 Q308", "it depends on the chunks and not on the track alone"},
    {"Q301", "a tag goes on where the block would be cut"},
    {"Q304 Q416", "the tag may end anywhere"},
    {"Q305 Q404 Q406 Q407 Q408 Q409 Q410", "the value that was meant is not on the line"},
    {"Q309", "the hours that were meant are not on the line"},
    {"Q311 Q313", "every time of the track would have to change"},
    {"Q403", "nobody knows what the setting was to do"},
    {"Q405", "it may be a setting, a part of the text, or a note"},
    {"Q411 Q412", "other players obey it"},
    {"Q431", "a text about tags may say it so"},
    {"Q433", "what it was to do can be said in more than one way, or it may be a text"},
};

const char* ReasonOf(std::string_view number) {
    const auto* const found =
        std::find_if(std::begin(kReasons), std::end(kReasons), [number](const Reason& reason) {
            return std::string_view(reason.codes).find(number) != std::string_view::npos;
        });
    return found == std::end(kReasons) ? "it cannot be told for certain what was meant"
                                       : found->words;
}

}  // namespace

bool IsLeft(const check::Finding& finding) {
    const std::string_view number = finding.code->number;
    return finding.code->severity != check::Severity::kRemark || number == "Q431" ||
           number == "Q433";
}

std::string WhyLeft(const check::Finding& finding, const Document& outcome,
                    const check::CodeFilter& filter) {
    if (!filter.Lets(*finding.code)) {
        return "it was not to be fixed";
    }
    const bool is_frozen = finding.line <= outcome.lines().size() &&
                           outcome.lines()[finding.line - 1].frozen &&
                           outcome.lines()[finding.line - 1].text.find('\0') == std::string::npos;
    return is_frozen ? "its block would give no cue all the same" : ReasonOf(finding.code->number);
}

}  // namespace quill::fix
