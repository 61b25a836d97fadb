#include "tools/check/block_check.h"

#include <algorithm>
#include <string>

#include "tools/check/loss_reason.h"
#include "tools/check/meant_map.h"
#include "tools/check/meant_timing.h"
#include "tools/console/cue_time.h"

namespace quill::check {
namespace {

constexpr std::string_view kEmptyHeader = "WEBVTT\n\n";

}  // namespace

BlockCheck::BlockCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                       std::string_view track, const ChunkPlan& plan, const Play& play,
                       TrackReport& report)
    : track_(track),
      plan_(plan),
      play_(play),
      report_(report),
      parser_(module, capture, kEmptyHeader),
      asked_(module, capture, kEmptyHeader),
      remarks_(asked_),
      matcher_(play),
      neighbours_(track, plan, play),
      line_counter_(track) {}

void BlockCheck::Run(std::size_t begin, std::uint32_t line, const Findings& above) {
    Sums& sums = report_.sums();
    sums.cues_delivered = static_cast<std::uint32_t>(play_.cues.size());
    const bool says_why = std::any_of(above.begin(), above.end(), [](const Finding& finding) {
        return finding.code->severity == Severity::kLost;
    });
    // It is about the track as a whole, and goes before what is about its lines.
    if (!says_why && !HasBlocks(begin, line)) {
        report_.Say(Finding(1, "no-cues", "the track has no cue"));
    }
    report_.Say(above);
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
        const ByteClass fate = Judge(*block, verdict, findings);
        sums.AddBytes(fate, block->end - block->begin);
        Note(*block, verdict, fate);
        report_.Say(findings);
        report_.ShowProgress(track_.size() / 4 + reached / 4 * 3, track_.size());
    }
    sums.AddBytes(ByteClass::kBlank, track_.size() - reached);
    ReportStrays(SIZE_MAX);
}

bool BlockCheck::HasBlocks(std::size_t begin, std::uint32_t line) {
    BlockReader reader(track_, begin, line);
    while (const std::optional<Block> block = reader.Next()) {
        text_.Read(track_, *block);
        const bool is_comment = text_.IsComment() || text_.IsStyle();
        if (!block->is_rest && (!is_comment || HoldsCue())) {
            return true;
        }
    }
    return !play_.cues.empty();
}

ByteClass BlockCheck::Judge(const Block& block, const Verdict& verdict, Findings& findings) {
    const ByteClass byte_class = verdict.fate == Fate::kDelivered
                                     ? JudgeDelivered(block, verdict, findings)
                                     : JudgeLost(block, verdict, findings);
    if (findings.size() > 1) {
        std::stable_sort(findings.begin(), findings.end(),
                         [](const Finding& a, const Finding& b) { return a.line < b.line; });
    }
    NoteForm(block, verdict);
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
    if (play_.offset < 0 && play_.offset + verdict.cue.end <= 0) {
        findings.emplace_back(text_.number(text_.TimingIndex()), "before-zero",
                              "the cue ends at " +
                                  console::FormatTime(play_.offset + verdict.cue.end, '.') +
                                  " when it is mapped, before the video begins");
    }
    if (block.is_open) {
        findings.emplace_back(text_.number(text_.size() - 1), "last-blank-line",
                              "no blank line ends the last cue");
    }
    return ByteClass::kDelivered;
}

ByteClass BlockCheck::JudgeLost(const Block& block, const Verdict& verdict, Findings& findings) {
    const bool is_comment = text_.IsComment() || text_.IsStyle();
    if (block.is_rest && above_ == BlockForm::kComment) {
        return ByteClass::kComment;
    }
    if (block.is_rest) {
        ExplainRest(block, verdict, findings);
        return ByteClass::kCut;
    }
    if (is_comment && !HoldsCue()) {
        return JudgeComment(findings);
    }
    ExplainLost(block, verdict, findings);
    return ByteClass::kLost;
}

bool BlockCheck::HoldsCue() {
    const std::size_t arrow = text_.ArrowLine();
    return arrow > 1 && arrow < text_.size() && IsTimingLine(text_.text(arrow), asked_);
}

// One finding for one fault: a text that is cut off from its timing line, and an identifier that a
// surplus carriage return cuts off, are spoken of where the timing line is.
void BlockCheck::ExplainLost(const Block& block, const Verdict& verdict, Findings& findings) {
    const Surroundings around = LookAround(track_, block, above_);
    const bool has_times = text_.ArrowLine() < text_.size();
    const bool is_identifier =
        around.ends_in_two_returns && around.below == BlockForm::kCue && !IsLikeMap(text_.text(0));
    if (!has_times && (awaits_text_ || is_identifier)) {
        return;
    }
    findings.push_back(ExplainLostOnce(block, verdict, around));
}

// A track that consists of one stray line over and over again has it explained once.
Finding BlockCheck::ExplainLostOnce(const Block& block, const Verdict& verdict,
                                    const Surroundings& around) {
    const bool may_repeat = text_.size() == 1 && !block.is_open;
    if (may_repeat && explained_ && explained_->text == text_.line(0).all &&
        explained_->around == around) {
        Finding finding = explained_->finding;
        finding.line = block.first_line;
        return finding;
    }
    Finding finding = ExplainLoss(text_, verdict, around, asked_);
    if (may_repeat) {
        explained_ = Explained{text_.line(0).all, around, finding};
    }
    return finding;
}

// The rest of a block that was cut after ten lines.
void BlockCheck::ExplainRest(const Block& block, const Verdict& verdict, Findings& findings) {
    findings.emplace_back(block.first_line, "eleventh-line",
                          "the block is cut off before " + Quoted(text_.text(0)));
    if (text_.ArrowLine() < text_.size()) {
        findings.push_back(ExplainLoss(text_, verdict, {}, asked_));
    }
}

void BlockCheck::NoteForm(const Block& block, const Verdict& verdict) {
    const bool has_times = text_.ArrowLine() < text_.size();
    const bool is_comment = text_.IsComment() || text_.IsStyle();
    awaits_text_ =
        verdict.fate == Fate::kError && has_times && text_.TimingIndex() + 1 == text_.size();
    if (!block.is_rest || above_ != BlockForm::kComment) {
        above_ = has_times                       ? BlockForm::kCue
                 : is_comment                    ? BlockForm::kComment
                 : above_ == BlockForm::kNothing ? BlockForm::kText
                                                 : above_;
    }
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

void BlockCheck::Note(const Block& block, const Verdict& verdict, ByteClass fate) {
    BlockNote note{block.first_line, block.line_count, plan_.IndexOf(block.completed), fate};
    if (fate == ByteClass::kDelivered) {
        note.cue = matcher_.found();
    } else if (fate == ByteClass::kLost || fate == ByteClass::kLostWithChunk) {
        note.times = TimesOf(verdict);
    }
    report_.Note(note);
}

// What the module reads when it reads the block alone, else what was meant by its times.
std::optional<BlockTimes> BlockCheck::TimesOf(const Verdict& verdict) const {
    if (verdict.fate == Fate::kDelivered) {
        return BlockTimes{play_.offset + verdict.cue.start, play_.offset + verdict.cue.end};
    }
    constexpr double kMilliseconds = 1000;
    for (std::size_t index = 0; index < text_.size(); ++index) {
        const std::optional<MeantTiming> meant = ReadMeantTiming(text_.text(index));
        if (meant && !meant->start.text.empty() && !meant->end.text.empty()) {
            return BlockTimes{
                play_.offset + static_cast<double>(meant->start.milliseconds) / kMilliseconds,
                play_.offset + static_cast<double>(meant->end.milliseconds) / kMilliseconds};
        }
    }
    return std::nullopt;
}

// Strays are named by the line in which their chunk begins.
void BlockCheck::ReportStrays(std::size_t chunk) {
    for (const std::size_t number : matcher_.TakeStrays(chunk)) {
        const PlayedCue& stray = play_.cues[number - 1];
        const std::uint32_t cause = stray.chunk == 0 ? 0 : neighbours_.CulpritIn(stray.chunk - 1);
        const std::string of =
            cause == 0 ? "" : " of the chunk that line " + std::to_string(cause) + " ended";
        const std::uint32_t line = line_counter_.LineOf(plan_.Begin(stray.chunk));
        report_.Note({line, 0, stray.chunk, ByteClass::kDelivered, number});
        report_.Say(Finding(line, "remains",
                            "the cue at " + console::FormatTime(stray.start, '.') +
                                " is made of remains" + of + "; its chunk begins here")
                        .Because(cause));
    }
}

}  // namespace quill::check
