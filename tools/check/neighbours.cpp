#include "tools/check/neighbours.h"

#include <string>
#include <utility>

#include "tools/console/cue_time.h"

namespace quill::check {
namespace {

const char* CodeOf(const EarlyEnd& early_end) {
    if (early_end.header_line != 0) {
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

Neighbours::Neighbours(std::string_view track, const ChunkPlan& plan, const Play& play)
    : track_(track), plan_(plan), play_(play), carriage_return_(track.find('\r')) {}

// The one to blame is the first block that ends in the chunk and has the fate by which that ended.
void Neighbours::Note(const Block& block, const Verdict& verdict, std::uint32_t line) {
    block_before_ = block.begin;
    if (verdict.fate == Fate::kDelivered || verdict.fate == Fate::kFailed) {
        return;
    }
    const std::size_t chunk = plan_.IndexOf(block.completed);
    const EarlyEnd* const early_end = play_.FindEarlyEnd(chunk, chunk);
    if (early_end != nullptr && early_end->fate == verdict.fate &&
        !(culprit_ && culprit_->chunk == chunk)) {
        culprit_before_ = std::exchange(culprit_, Culprit{chunk, line});
    }
}

std::uint32_t Neighbours::CulpritIn(std::size_t chunk) const {
    for (const std::optional<Culprit>& culprit : {culprit_, culprit_before_}) {
        if (culprit && culprit->chunk == chunk) {
            return culprit->line;
        }
    }
    return 0;
}

Finding Neighbours::Explain(const Block& block, const Verdict& verdict) const {
    const std::string cue = "the cue at " + console::FormatTime(verdict.cue.start, '.');
    const std::size_t first = plan_.IndexOf(block.begin);
    const std::size_t last = plan_.IndexOf(block.completed);
    if (const EarlyEnd* const early_end = play_.FindEarlyEnd(first, last)) {
        const std::uint32_t line =
            early_end->header_line != 0 ? early_end->header_line : CulpritIn(early_end->chunk);
        const std::string by = line != 0 ? "line " + std::to_string(line) : "something before it";
        return Finding(block.first_line, CodeOf(*early_end),
                       cue + " is lost with its chunk, which " + by + " ended")
            .Because(line);
    }
    if (first <= play_.header_chunk && !play_.early_ends.empty()) {
        return Finding(block.first_line, "taken-for-header",
                       cue + " is taken for a part of the header")
            .Because(play_.early_ends[0].header_line);
    }
    if (HasSkippedLineFeed(block_before_, block.completed)) {
        return {block.first_line, "skipped-line-feed",
                cue + " is lost with a line feed that begins a chunk"};
    }
    return {block.first_line, "in-chunk", cue + " does not come out of its chunk"};
}

// Whether a chunk that begins there begins with a line feed, behind some lone carriage return.
bool Neighbours::HasSkippedLineFeed(std::size_t begin, std::size_t end) const {
    for (std::size_t chunk = plan_.IndexOf(begin); chunk <= plan_.IndexOf(end); ++chunk) {
        const std::size_t at = plan_.Begin(chunk);
        if (at > carriage_return_ && at < track_.size() && track_[at] == '\n' &&
            track_[at - 1] != '\r') {
            return true;
        }
    }
    return false;
}

}  // namespace quill::check
