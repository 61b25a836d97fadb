#include "tools/check/block_check.h"

#include <algorithm>
#include <string>

#include "tools/check/loss_reason.h"
#include "tools/console/cue_time.h"

namespace quill::check {
namespace {

constexpr std::string_view kBeginning = "WEBVTT\n\n";

}  // namespace

BlockCheck::BlockCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                       std::string_view track, const ChunkPlan& plan, const Play& play,
                       TrackReport& report)
    : track_(track),
      plan_(plan),
      play_(play),
      report_(report),
      parser_(module, capture, kBeginning),
      asked_(module, capture, kBeginning),
      remarks_(asked_),
      matcher_(play),
      neighbours_(track, plan, play),
      line_counter_(track) {}

void BlockCheck::Run(std::size_t begin, std::uint32_t line) {
    Sums& sums = report_.sums();
    sums.cues_delivered = static_cast<std::uint32_t>(play_.cues.size());
    BlockReader reader(track_, begin, line);
    std::size_t reached = begin;
    while (const std::optional<Block> block = reader.Next()) {
        sums.AddBytes(ByteClass::kBlank, block->begin - reached + block->fed_end - block->end);
        reached = block->fed_end;
        ReportStrays(plan_.IndexOf(block->completed));
        text_.Read(track_, *block);
        const std::string_view piece = track_.substr(block->begin, block->fed_end - block->begin);
        Findings findings;
        const Verdict& verdict = block->is_open ? parser_.AskOpen(piece) : parser_.Ask(piece);
        sums.AddBytes(Judge(*block, verdict, findings), block->end - block->begin);
        report_.Say(findings);
        report_.ShowProgress(track_.size() / 4 + reached / 4 * 3, track_.size());
    }
    sums.AddBytes(ByteClass::kBlank, track_.size() - reached);
    ReportStrays(SIZE_MAX);
}

ByteClass BlockCheck::Judge(const Block& block, const Verdict& verdict, Findings& findings) {
    const ByteClass byte_class = verdict.fate == Fate::kDelivered
                                     ? JudgeDelivered(block, verdict, findings)
                                     : JudgeLost(block, verdict, findings);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    neighbours_.Note(block, verdict, findings.empty() ? block.first_line : findings[0].line);
    return byte_class;
}

ByteClass BlockCheck::JudgeDelivered(const Block& block, const Verdict& verdict,
                                     Findings& findings) {
    switch (matcher_.Find(verdict.cue, plan_.IndexOf(block.completed))) {
        case CueMatcher::Match::kNone:
            findings.push_back(neighbours_.Explain(block, verdict));
            return ByteClass::kLostWithChunk;
        case CueMatcher::Match::kOther:
            findings.emplace_back(block.first_line, "chunked",
                                  "the cue at " + console::FormatTime(verdict.cue.start, '.') +
                                      " is another one in its chunk");
            break;
        case CueMatcher::Match::kSame:
            break;
    }
    remarks_.Examine(text_, verdict, findings);
    if (block.is_open) {
        findings.emplace_back(text_.number(text_.size() - 1), "last-blank-line",
                              "no blank line ends the last cue");
    }
    return ByteClass::kDelivered;
}

ByteClass BlockCheck::JudgeLost(const Block& block, const Verdict& verdict, Findings& findings) {
    if (block.is_rest) {
        findings.emplace_back(block.first_line, "eleventh-line",
                              "the block is cut off before " + Quoted(text_.text(0)));
        return ByteClass::kCut;
    }
    if (text_.IsComment() || text_.IsStyle()) {
        return JudgeComment(findings);
    }
    findings.push_back(ExplainLoss(text_, verdict));
    return ByteClass::kLost;
}

ByteClass BlockCheck::JudgeComment(Findings& findings) {
    ++report_.sums().comments;
    if (text_.IsStyle()) {
        findings.emplace_back(text_.number(0), "style-block",
                              "the block " + Quoted(text_.text(0)) + " is not read");
    } else if (const std::size_t arrow = text_.ArrowLine(); arrow < text_.size()) {
        findings.emplace_back(text_.number(arrow), "comment-arrow", "a comment holds an arrow");
    }
    return ByteClass::kComment;
}

// Strays are named by the line in which their chunk begins.
void BlockCheck::ReportStrays(std::size_t chunk) {
    for (const PlayedCue& stray : matcher_.TakeStrays(chunk)) {
        report_.Say(Finding(line_counter_.LineOf(plan_.Begin(stray.chunk)), "remains",
                            "the cue at " + console::FormatTime(stray.start, '.') +
                                " is made of remains; its chunk begins here"));
    }
}

}  // namespace quill::check
