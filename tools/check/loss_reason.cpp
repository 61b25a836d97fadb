#include "tools/check/loss_reason.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/characters.h"
#include "tools/check/meant_map.h"
#include "tools/check/meant_time.h"
#include "tools/check/meant_timing.h"
#include "tools/check/module_words.h"
#include "tools/check/tag_reason.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

constexpr std::string_view kPageComment = "<!--";
constexpr std::size_t kNone = std::string_view::npos;

Finding WrongArrow(std::string_view text, std::uint32_t line, std::string_view arrow,
                   const std::string& fix) {
    const std::string between = arrow.empty() ? "nothing" : Quoted(arrow);
    return Finding(line, "wrong-arrow", between + " stands between the times", fix)
        .At(text, arrow.empty() ? kNone : text.find(arrow));
}

bool IsTime(std::string_view line) {
    return ReadMeantTime(line).is_certain;
}

// Whether the time that is not beside the arrow makes up the line next to it.
bool IsTornOff(const BlockText& block, const std::string& which) {
    const std::size_t next = which == "end" ? block.TimingIndex() + 1 : block.TimingIndex() - 1;
    return next < block.size() && IsTime(block.text(next));
}

Finding TornOff(std::uint32_t line, const std::string& which) {
    const bool is_end = which == "end";
    return {
        line, which + "-time",
        "the " + which + " time stands on the line " + (is_end ? "below" : "above"),
        std::string("remove the line end ") + (is_end ? "behind the arrow" : "before the arrow")};
}

Finding InvalidTime(const BlockText& block, const std::string& which, std::string_view time,
                    LoneParser& asked) {
    const std::string_view text = block.text(block.TimingIndex());
    const std::uint32_t line = block.number(block.TimingIndex());
    const std::string fix = WriteInstead(text, asked);
    if (const std::size_t comment = text.find(kPageComment); comment != kNone) {
        return Finding(line, "page-comment", "a page comment is taken for a timing line")
            .At(text, comment);
    }
    if (block.TimingIndex() == 0 && block.size() > 1 && IsTimingLine(block.text(1), asked)) {
        return {line, "identifier-arrow",
                "the identifier " + Quoted(text) + " is taken for the timing line"};
    }
    if (const auto meant = ReadMeantTiming(text); meant && meant->arrow != kArrow) {
        return WrongArrow(text, line, meant->arrow, fix);
    }
    if (time.empty() && IsTornOff(block, which)) {
        return TornOff(line, which);
    }
    const std::size_t arrow = text.find(kArrow);
    const std::size_t at = text.find(time, which == "end" ? arrow + kArrow.size() : 0);
    const MeantTime meant = ReadMeantTime(time);
    if (meant.has_comma) {
        return Finding(line, which + "-time-comma",
                       which + " time " + Quoted(time) + " with a decimal comma", fix)
            .At(text, at);
    }
    return Finding(line, which + "-time",
                   "invalid " + which + " time " + Quoted(time) +
                       (meant.complaint.empty() ? "" : ": " + meant.complaint),
                   fix)
        .At(text, at);
}

Finding LineSetting(const BlockText& block) {
    std::string_view settings = block.Timing().settings;
    const std::size_t at = settings.find("line:");
    if (at != std::string_view::npos) {
        settings.remove_prefix(at);
        settings = settings.substr(0, settings.find(' '));
    }
    return Finding(block.number(block.TimingIndex()), "line-setting",
                   "no number in the setting " + Quoted(settings))
        .At(block.text(block.TimingIndex()), settings);
}

Finding NoText(const BlockText& block, const Surroundings& around) {
    const std::uint32_t line = block.number(block.TimingIndex());
    if (around.ends_in_two_returns) {
        return {line, "two-returns", "the line ends in two carriage returns and a line feed"};
    }
    constexpr std::size_t kOneWord = 1;
    if (const std::string_view text = TextAmongSettings(block.Timing().settings, kOneWord);
        !text.empty()) {
        return Finding(line, "no-text", "the text stands on the timing line",
                       "put " + QuotedWhole(text) + " on a line of its own below")
            .At(block.text(block.TimingIndex()), text);
    }
    if (around.below != BlockForm::kText) {
        return {line, "no-text", "no text below the timing line",
                "write a text below it, or remove it"};
    }
    const std::string lines = around.blank_lines_below == 1
                                  ? "blank line"
                                  : std::to_string(around.blank_lines_below) + " blank lines";
    return {line, "no-text",
            "the text stands behind " + (around.blank_lines_below == 1 ? "a " + lines : lines),
            "remove the " + lines + " below it"};
}

// A block whose timing line comes too late.
Finding LateTimes(const BlockText& block, std::size_t arrow, LoneParser& asked) {
    for (std::size_t index = arrow; index-- > 0;) {
        if (LooksBlank(block.text(index))) {
            return {block.number(index), "looks-blank",
                    "the line is not blank: it holds " + NamesIn(block.text(index))};
        }
    }
    if (console::BeginsWith(block.text(arrow), kArrow) && IsTime(block.text(arrow - 1))) {
        return TornOff(block.number(arrow), "start");
    }
    std::string fix = BlankLineAbove(block.text(arrow - 1), block.number(arrow - 1));
    if (!IsTimingLine(block.text(arrow), asked)) {
        const std::string instead = WriteInstead(block.text(arrow), asked);
        fix += instead.empty() ? "" : " and " + instead;
    }
    return {block.number(arrow), "late-times",
            "the timing line is line " + std::to_string(arrow + 1) + " of its block", fix};
}

// A block without a timing line that is none of the known ones.
Finding Stray(const BlockText& block, const Surroundings& around) {
    const std::string_view first = block.text(0);
    const bool alone = block.size() == 1;
    const bool is_number = first.find_first_not_of("0123456789") == std::string_view::npos;
    const bool is_below = around.above == BlockForm::kCue || around.above == BlockForm::kComment;
    const char* const code = alone ? "lone-line" : "no-times";
    if (console::BeginsWith(first, "Region:")) {
        return {block.number(0), code, "a region behind the header, " + Quoted(first),
                "move it up to the first line, with no blank line between"};
    }
    std::string fix;
    if (console::BeginsWith(first, "#EXT")) {
        fix = "remove it: it is a line of a playlist";
    } else if (alone && around.below == BlockForm::kCue && (is_number || !is_below)) {
        fix = "remove the blank line below it, if it is the identifier of that cue";
    } else if (is_below) {
        fix = "remove the blank line above it, or put NOTE above it if it is a comment";
    }
    return {block.number(0), code,
            (alone ? "a line on its own, " : "no timing line in the block ") + Quoted(first), fix};
}

Finding SecondTrack(const BlockText& block) {
    const bool has_map = block.size() > 1 && IsLikeMap(block.text(1));
    return {block.number(0), "second-track",
            std::string("a second track begins here") + (has_map ? "; its map is not read" : ""),
            has_map ? "make a file of its own of what begins here" : ""};
}

Finding NoTimes(const BlockText& block, const Surroundings& around, LoneParser& asked) {
    if (IsSignature(block.text(0))) {
        return SecondTrack(block);
    }
    const std::size_t arrow = block.ArrowLine();
    if (arrow < block.size() && arrow > 0) {
        return LateTimes(block, arrow, asked);
    }
    for (std::size_t index = 0; index < block.size(); ++index) {
        const std::optional<MeantTiming> meant = ReadMeantTiming(block.text(index));
        if (meant && meant->arrow != kArrow) {
            return WrongArrow(block.text(index), block.number(index), meant->arrow,
                              WriteInstead(block.text(index), asked));
        }
    }
    if (IsLikeMap(block.text(0))) {
        if (around.ends_in_two_returns) {
            return {block.number(0), "two-returns",
                    "lines end in two carriage returns and a line feed, which cuts the map off "
                    "from the header"};
        }
        const std::string meant = ReadMeantMap(block.text(0)).text;
        const bool same = meant.empty() || meant == block.text(0);
        return {block.number(0), "late-map", "a map header behind the header",
                same ? "" : "write " + QuotedWhole(meant) + " below the first line"};
    }
    return Stray(block, around);
}

Finding ExplainFailure(const BlockText& block, const Verdict& verdict, const Surroundings& around,
                       LoneParser& asked) {
    const std::string& printed = verdict.printed;
    if (const auto end = Between(printed, words::kEndTime, ">\n")) {
        return InvalidTime(block, "end", *end, asked);
    }
    if (block.HasZeroByte() && Says(printed, words::kInput)) {
        return {block.number(0), "zero-byte-line", "a zero byte hides a line end"};
    }
    if (Says(printed, words::kSecondLine) || Says(printed, words::kNoTimingLine)) {
        return NoTimes(block, around, asked);
    }
    return {block.number(0), "other", "the module gives no cue for " + Quoted(block.text(0))};
}

}  // namespace

bool IsTimingLine(std::string_view line, LoneParser& asked) {
    return line.find(kArrow) != std::string_view::npos &&
           asked.Ask(std::string(line) + "\nx\n\n").fate == Fate::kDelivered;
}

std::string BlankLineAbove(std::string_view line_above, std::uint32_t number) {
    const bool is_number =
        !line_above.empty() && line_above.find_first_not_of("0123456789") == std::string_view::npos;
    return is_number ? "put a blank line above line " + std::to_string(number)
                     : "put a blank line above it";
}

std::string WriteInstead(std::string_view line, LoneParser& asked) {
    const std::optional<MeantTiming> meant = ReadMeantTiming(line);
    return meant && IsTimingLine(meant->text, asked) ? "write " + QuotedWhole(meant->text) : "";
}

bool IsSignature(std::string_view line) {
    constexpr std::string_view kSignature = "WEBVTT";
    if (console::BeginsWith(line, console::kByteOrderMark)) {
        line.remove_prefix(console::kByteOrderMark.size());
    }
    return line.substr(0, kSignature.size()) == kSignature &&
           (line.size() == kSignature.size() || line[kSignature.size()] == ' ' ||
            line[kSignature.size()] == '\t');
}

Finding ExplainLoss(const BlockText& block, const Verdict& verdict, const Surroundings& around,
                    LoneParser& asked) {
    if (verdict.fate == Fate::kThrew) {
        return LineSetting(block);
    }
    if (verdict.fate == Fate::kRefused) {
        if (const auto tag = Between(verdict.printed, words::kStartTag, words::kTagEnd)) {
            return UnknownTag(block, *tag, asked);
        }
    }
    if (verdict.fate == Fate::kError) {
        if (const auto start = Between(verdict.printed, words::kStartTime, ">\n")) {
            return InvalidTime(block, "start", *start, asked);
        }
        return NoText(block, around);
    }
    return ExplainFailure(block, verdict, around, asked);
}

}  // namespace quill::check
