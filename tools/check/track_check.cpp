#include "tools/check/track_check.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "tools/check/file_kind.h"
#include "tools/check/header_check.h"
#include "tools/check/loss_reason.h"
#include "tools/cue_time.h"

namespace quill {
namespace {

constexpr std::string_view kBeginning = "WEBVTT\n\n";

const char* NeighbourCode(const EarlyEnd& early_end) {
    if (early_end.in_header) {
        return "behind-map";
    }
    switch (early_end.fate) {
        case Fate::kError:
            return "behind-error";
        case Fate::kRefused:
            return "behind-tag";
        default:
            return "behind-line-setting";
    }
}

}  // namespace

TrackCheck::TrackCheck(const ModuleHandle& module, DiagnosticsCapture& capture, std::string name,
                       std::string_view track, std::optional<std::uint32_t> chunk_size,
                       Report& report, Progress& progress)
    : module_(module),
      capture_(capture),
      name_(std::move(name)),
      track_(track),
      plan_(track, chunk_size),
      report_(report),
      progress_(progress) {}

Sums TrackCheck::Run(std::size_t size) {
    if (IsRejected()) {
        Findings findings = {ExplainRejection(track_.substr(0, size))};
        Say(findings);
        sums_.AddBytes(ByteClass::kRejected, size);
        return sums_;
    }
    const std::size_t begin = LineAt(track_, 0).end;
    sums_.AddBytes(ByteClass::kSignature, std::min(begin, size));
    Findings findings;
    HeaderCheck header(module_, capture_, track_, plan_);
    header.Run(begin, findings, sums_);
    Say(findings);

    Player player(module_, capture_, track_, plan_, header.throwing_chunks());
    const Play play = player.Run(name_, progress_);
    sums_.cues_delivered = static_cast<std::uint32_t>(play.cues.size());
    CheckBlocks(play, header.end(), header.end_line());
    sums_.CheckBytes(size);
    return sums_;
}

// The first line alone decides, fed to a parser of its own.
bool TrackCheck::IsRejected() {
    const std::size_t size = std::min(LineAt(track_, 0).end, plan_.End(0));
    ParserHandle parser(module_, capture_);
    try {
        return size == 0 ||
               parser.Feed(track_.data(), static_cast<unsigned int>(size)) == WEBVTT_RESULT_ERROR;
    } catch (const ModuleThrew&) {
        return false;
    }
}

void TrackCheck::CheckBlocks(const Play& play, std::size_t begin, std::uint32_t line) {
    LoneParser parser(module_, capture_, kBeginning);
    LoneParser asked(module_, capture_, kBeginning);
    CueRemarks remarks(asked);
    CueMatcher matcher(play);
    play_ = &play;
    remarks_ = &remarks;
    matcher_ = &matcher;
    carriage_return_ = track_.find('\r');
    BlockReader reader(track_, begin, line);
    std::size_t reached = begin;
    while (const std::optional<Block> block = reader.Next()) {
        sums_.AddBytes(ByteClass::kBlank, block->begin - reached + block->fed_end - block->end);
        reached = block->fed_end;
        ReportStrays(plan_.IndexOf(block->completed));
        text_.Read(track_, *block);
        const std::string_view piece = track_.substr(block->begin, block->fed_end - block->begin);
        Findings findings;
        const Verdict& verdict = block->is_open ? parser.AskOpen(piece) : parser.Ask(piece);
        sums_.AddBytes(Judge(*block, verdict, findings), block->end - block->begin);
        Say(findings);
        block_before_ = block->begin;
        progress_.Show(name_, track_.size() / 4 + reached / 4 * 3, track_.size());
    }
    sums_.AddBytes(ByteClass::kBlank, track_.size() - std::min(reached, track_.size()));
    ReportStrays(SIZE_MAX);
}

ByteClass TrackCheck::Judge(const Block& block, const Verdict& verdict, Findings& findings) {
    const ByteClass byte_class = verdict.fate == Fate::kDelivered
                                     ? JudgeDelivered(block, verdict, findings)
                                     : JudgeLost(block, verdict, findings);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    NoteCulprit(block, verdict, findings);
    return byte_class;
}

ByteClass TrackCheck::JudgeDelivered(const Block& block, const Verdict& verdict,
                                     Findings& findings) {
    switch (matcher_->Find(verdict.cue, plan_.IndexOf(block.completed))) {
        case CueMatcher::Match::kNone:
            findings.push_back(ExplainNeighbours(block, verdict));
            return ByteClass::kLostWithChunk;
        case CueMatcher::Match::kOther:
            findings.emplace_back(block.first_line, "chunked",
                                  "the cue at " + FormatTime(verdict.cue.start, '.') +
                                      " is another one in its chunk");
            break;
        case CueMatcher::Match::kSame:
            break;
    }
    remarks_->Examine(text_, verdict, findings);
    if (block.is_open) {
        findings.emplace_back(text_.number(text_.size() - 1), "last-blank-line",
                              "no blank line ends the last cue");
    }
    return ByteClass::kDelivered;
}

ByteClass TrackCheck::JudgeLost(const Block& block, const Verdict& verdict, Findings& findings) {
    if (block.is_rest) {
        findings.emplace_back(block.first_line, "eleventh-line",
                              "the block is cut off before " + Quoted(text_.text(0)));
        return ByteClass::kCut;
    }
    if (text_.IsComment() || text_.IsStyle()) {
        ++sums_.comments;
        if (text_.IsStyle()) {
            findings.emplace_back(
                block.first_line, "style-block",
                "a " + std::string(text_.text(0).substr(0, 6)) + " block is not read");
        } else if (const std::size_t arrow = text_.ArrowLine(); arrow < text_.size()) {
            findings.emplace_back(text_.number(arrow), "comment-arrow", "a comment holds an arrow");
        }
        return ByteClass::kComment;
    }
    findings.push_back(ExplainLoss(text_, verdict));
    return ByteClass::kLost;
}

// The first block that ends in a chunk and has the fate by which that chunk ended.
void TrackCheck::NoteCulprit(const Block& block, const Verdict& verdict, const Findings& findings) {
    if (verdict.fate == Fate::kDelivered || verdict.fate == Fate::kFailed) {
        return;
    }
    const std::size_t chunk = plan_.IndexOf(block.completed);
    const EarlyEnd* const early_end = play_->FindEarlyEnd(chunk, chunk);
    if (early_end != nullptr && early_end->fate == verdict.fate &&
        !(culprit_ && culprit_->chunk == chunk)) {
        culprit_ = {chunk, findings.empty() ? block.first_line : findings[0].line};
    }
}

Finding TrackCheck::ExplainNeighbours(const Block& block, const Verdict& verdict) {
    const std::string cue = "the cue at " + FormatTime(verdict.cue.start, '.');
    const std::size_t first = plan_.IndexOf(block.begin);
    const std::size_t last = plan_.IndexOf(block.completed);
    if (const EarlyEnd* const early_end = play_->FindEarlyEnd(first, last)) {
        const bool known = culprit_ && culprit_->chunk == early_end->chunk;
        const std::string by = early_end->in_header ? "the map header"
                               : known              ? "line " + std::to_string(culprit_->line)
                                                    : "something before it";
        return {block.first_line, NeighbourCode(*early_end),
                cue + " is lost with its chunk, which " + by + " ended"};
    }
    if (first <= play_->header_chunk && !play_->early_ends.empty()) {
        return {block.first_line, "taken-for-header", cue + " is taken for a part of the header"};
    }
    if (HasSkippedLineFeed(block_before_, block.completed)) {
        return {block.first_line, "skipped-line-feed",
                cue + " is lost with a line feed that begins a chunk"};
    }
    return {block.first_line, "in-chunk", cue + " does not come out of its chunk"};
}

// Whether a chunk that begins there begins with a line feed, behind some lone carriage return.
bool TrackCheck::HasSkippedLineFeed(std::size_t begin, std::size_t end) const {
    for (std::size_t chunk = plan_.IndexOf(begin); chunk <= plan_.IndexOf(end); ++chunk) {
        const std::size_t at = plan_.Begin(chunk);
        if (at > carriage_return_ && at < track_.size() && track_[at] == '\n' &&
            track_[at - 1] != '\r') {
            return true;
        }
    }
    return false;
}

// Strays are named by the line on which their chunk begins.
void TrackCheck::ReportStrays(std::size_t chunk) {
    for (const PlayedCue& stray : matcher_->TakeStrays(chunk)) {
        for (const std::size_t begin = plan_.Begin(stray.chunk); place_.offset < begin;) {
            const Line line = LineAt(track_, place_.offset);
            if (line.end > begin) {
                break;
            }
            place_ = {line.end, place_.line + 1};
        }
        Findings findings;
        findings.emplace_back(place_.line, "remains",
                              "the cue at " + FormatTime(stray.start, '.') +
                                  " is made of remains; its chunk begins here");
        Say(findings);
    }
}

void TrackCheck::Say(Findings& findings) {
    for (const Finding& finding : findings) {
        sums_.AddFinding(finding);
        progress_.Wipe();
        report_.AddFinding(name_, finding);
    }
}

}  // namespace quill
