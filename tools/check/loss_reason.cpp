#include "tools/check/loss_reason.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/module_words.h"

namespace quill::check {
namespace {

// What stands between the two texts in the module's words; nothing when they are not there.
std::optional<std::string_view> Between(std::string_view printed, std::string_view before,
                                        std::string_view behind) {
    const std::size_t at = printed.find(before);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = printed.substr(at + before.size());
    return rest.substr(0, std::min(rest.find(behind), rest.size()));
}

// What is wrong with a time, with a colon and a space before it; empty when it is hard to tell.
std::string TimeComplaint(std::string_view time) {
    constexpr std::size_t kFractionDigits = 3;
    if (time.empty()) {
        return ": there is none";
    }
    if (time.find('\t') != std::string_view::npos) {
        return ": a tab is taken for a part of it";
    }
    const std::size_t point = time.find('.');
    if (point == std::string_view::npos) {
        return ": it has no milliseconds";
    }
    if (time.size() - point - 1 != kFractionDigits) {
        return ": the point has not three digits behind it";
    }
    return "";
}

Finding InvalidTime(const BlockText& block, const std::string& which, std::string_view time) {
    const std::uint32_t line = block.number(block.TimingIndex());
    const std::string name = which + "-time";
    if (time.find(',') != std::string_view::npos) {
        return {line, name + "-comma", which + " time " + Quoted(time) + " with a decimal comma"};
    }
    return {line, name, "invalid " + which + " time " + Quoted(time) + TimeComplaint(time)};
}

// The line of the block on which the tag begins.
std::size_t TagLine(const BlockText& block, std::string_view name) {
    const std::string tag = "<" + std::string(name.substr(0, name.find('\n')));
    for (std::size_t index = block.TimingIndex() + 1; index < block.size(); ++index) {
        const std::size_t at = block.text(index).find(tag);
        if (at == std::string_view::npos) {
            continue;
        }
        const std::string_view behind = block.text(index).substr(at + tag.size());
        if (behind.empty() ||
            std::string_view(">. \t\f").find(behind[0]) != std::string_view::npos) {
            return index;
        }
    }
    return std::min(block.TimingIndex() + 1, block.size() - 1);
}

Finding UnknownTag(const BlockText& block, std::string_view name) {
    const std::uint32_t line = block.number(TagLine(block, name));
    if (name.empty()) {
        return {line, "unnamed-tag", "a \"<\" that begins no tag"};
    }
    return {line, "unknown-tag", "unknown start tag " + Quoted("<" + std::string(name) + ">")};
}

Finding LineSetting(const BlockText& block) {
    std::string_view settings = block.Timing().settings;
    const std::size_t at = settings.find("line:");
    if (at != std::string_view::npos) {
        settings.remove_prefix(at);
        settings = settings.substr(0, settings.find(' '));
    }
    return {block.number(block.TimingIndex()), "line-setting",
            "no number in the setting " + Quoted(settings)};
}

// Something that was meant for an arrow, behind something that may be a time. For a text without
// an arrow.
bool HasWrongArrow(std::string_view text) {
    static constexpr std::array<std::string_view, 5> kArrows = {"->", "-- >", "\xE2\x80\x94>",
                                                                "\xE2\x80\x93>", "\xE2\x86\x92"};
    return text.find(':') != std::string_view::npos &&
           std::any_of(kArrows.begin(), kArrows.end(), [text](std::string_view arrow) {
               const std::size_t at = text.find(arrow);
               return at != std::string_view::npos &&
                      text.substr(0, at).find_first_of("0123456789") != std::string_view::npos;
           });
}

Finding NoTimes(const BlockText& block) {
    const std::size_t arrow = block.ArrowLine();
    if (arrow < block.size()) {
        return {block.number(arrow), "late-times",
                "the timing line is line " + std::to_string(arrow + 1) + " of its block"};
    }
    for (std::size_t index = 0; index < block.size(); ++index) {
        if (HasWrongArrow(block.text(index))) {
            return {block.number(index), "wrong-arrow",
                    "no \"-->\" in " + Quoted(block.text(index))};
        }
    }
    if (block.text(0).substr(0, 15) == "X-TIMESTAMP-MAP") {
        return {block.number(0), "late-map", "a map header behind the header"};
    }
    if (block.size() == 1) {
        return {block.number(0), "lone-line", "a line on its own, " + Quoted(block.text(0))};
    }
    return {block.number(0), "no-times", "no timing line in the block " + Quoted(block.text(0))};
}

Finding ExplainFailure(const BlockText& block, const Verdict& verdict) {
    const std::string& printed = verdict.printed;
    if (const auto end = Between(printed, words::kEndTime, ">\n")) {
        return InvalidTime(block, "end", *end);
    }
    if (block.HasZeroByte() && Says(printed, words::kInput)) {
        return {block.number(0), "zero-byte-line", "a zero byte hides a line end"};
    }
    if (Says(printed, words::kSecondLine) || Says(printed, words::kNoTimingLine)) {
        return NoTimes(block);
    }
    return {block.number(0), "other", "the module gives no cue for " + Quoted(block.text(0))};
}

}  // namespace

Finding ExplainLoss(const BlockText& block, const Verdict& verdict) {
    if (verdict.fate == Fate::kThrew) {
        return LineSetting(block);
    }
    if (verdict.fate == Fate::kRefused) {
        if (const auto tag = Between(verdict.printed, words::kStartTag, words::kTagEnd)) {
            return UnknownTag(block, *tag);
        }
    }
    if (verdict.fate == Fate::kError) {
        if (const auto start = Between(verdict.printed, words::kStartTime, ">\n")) {
            return InvalidTime(block, "start", *start);
        }
        return {block.number(block.TimingIndex()), "no-text", "no text below the timing line"};
    }
    return ExplainFailure(block, verdict);
}

}  // namespace quill::check
