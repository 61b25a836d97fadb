#include "tools/check/cue_remarks.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "tools/check/characters.h"
#include "tools/console/cue_time.h"
#include "tools/console/escape.h"

namespace quill::check {
namespace {

// Hours as they are written, for a time that has them.
double WrittenHours(std::string_view time) {
    // "12::34.567" is twelve minutes.
    if (std::count(time.begin(), time.end(), ':') != 2 ||
        time.find("::") != std::string_view::npos) {
        return 0;
    }
    double hours = 0;
    for (const char digit : time.substr(0, time.find(':'))) {
        hours = hours * 10 + (digit - '0');
    }
    return hours;
}

void ExamineTimes(const BlockText& block, const TimingLine& timing, const CueCopy& cue,
                  Findings& findings) {
    constexpr double kSecondsPerHour = 3600;
    const std::uint32_t line = block.number(block.TimingIndex());
    const std::string_view text = block.text(block.TimingIndex());
    for (const auto& [written, delivered] :
         {std::pair(timing.start, cue.start), std::pair(timing.end, cue.end)}) {
        if (WrittenHours(written) * kSecondsPerHour > delivered) {
            findings.push_back(
                Finding(line, "hours-wrap",
                        Quoted(written) + " is delivered as " + console::FormatTime(delivered, '.'))
                    .At(text, written));
        }
    }
    if (cue.end <= cue.start) {
        findings.push_back(Finding(line, "end-before-start",
                                   "ends at " + console::FormatTime(cue.end, '.') +
                                       ", and starts at " + console::FormatTime(cue.start, '.'))
                               .At(text, timing.end));
    }
}

bool IsPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void ExamineLines(const BlockText& block, Findings& findings) {
    bool said = false;
    for (std::size_t index = 0; index < block.size(); ++index) {
        const Line& line = block.line(index);
        if (line.is_cut()) {
            findings.push_back(Finding(block.number(index), "zero-byte",
                                       "a zero byte hides the line's rest, " +
                                           Quoted(line.all.substr(line.text.size() + 1)))
                                   .At(line.all, line.text.size()));
        }
        const std::size_t foreign = said || index <= block.TimingIndex() || IsPlain(line.text)
                                        ? std::string_view::npos
                                        : console::FindInvalid(line.text);
        if (foreign != std::string_view::npos) {
            findings.push_back(
                Finding(block.number(index), "not-utf-8", "not UTF-8: " + Quoted(line.text))
                    .At(line.text, foreign));
            said = true;
        }
    }
}

bool HasMarkup(const BlockText& block) {
    for (std::size_t index = block.TimingIndex() + 1; index < block.size(); ++index) {
        const std::string_view text = block.text(index);
        if (text.find('<') != std::string_view::npos || text.find('&') != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

bool ShowsNothing(std::string_view text) {
    constexpr std::size_t kMostBytes = 64;
    if (text.size() > kMostBytes) {
        return false;
    }
    const std::string plain = Plain(text);
    return plain.find_first_not_of(" \n") == std::string::npos;
}

}  // namespace

void CueRemarks::Examine(const BlockText& block, const Verdict& verdict, Findings& findings) {
    const TimingLine timing = block.Timing();
    if (block.IsComment()) {
        findings.emplace_back(block.number(0), "comment-shown", "a comment is shown as a cue");
    }
    ExamineTimes(block, timing, verdict.cue, findings);
    order_.Examine(verdict.cue, block.number(block.TimingIndex()), findings);
    settings_.Examine(block.text(block.TimingIndex()), timing.settings,
                      block.number(block.TimingIndex()), findings);
    ExamineLines(block, findings);
    lines_.Examine(block, findings);
    if (ShowsNothing(verdict.cue.text)) {
        findings.emplace_back(block.number(block.TimingIndex()), "blank-text",
                              "the cue shows nothing");
    }
    if (HasMarkup(block)) {
        text_.Examine(block, verdict.printed, findings);
    }
}

}  // namespace quill::check
