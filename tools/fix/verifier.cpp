#include "tools/fix/verifier.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tools/check/surroundings.h"
#include "tools/fix/note_check.h"
#include "tools/host/track_reader.h"

namespace quill::fix {
namespace {

constexpr std::string_view kCueAtZero = "00:00.000 --> 00:00.000\nx\n\n";
class Taker : public host::CueSink {
  public:
    explicit Taker(std::vector<check::PlayedCue>& cues) : cues_(cues) {}
    void Add(const WebvttCueNode& cue) override {
        copy_.Assign(cue);
        cues_.push_back({copy_.start, copy_.end, check::Fingerprint(copy_), 0});
    }
    void Flush() override {}

  private:
    std::vector<check::PlayedCue>& cues_;
    check::CueCopy copy_;
};

// Whether a cue of a whole track is the one that a block makes alone.
bool IsThat(const check::PlayedCue& played, const check::PlayedCue& alone, double offset) {
    return played.fingerprint == alone.fingerprint &&
           std::abs(played.start - (offset + alone.start)) < kRounding &&
           std::abs(played.end - (offset + alone.end)) < kRounding;
}

std::string AtLine(std::uint32_t line, const std::string& words) {
    return "line " + std::to_string(line) + ": " + words;
}

}  // namespace

Verifier::Verifier(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                   Oracle& oracle, std::string_view track)
    : module_(module), capture_(capture), oracle_(oracle), track_(track) {
    ReadBefore();
}

// A track that is rejected has no blocks.
void Verifier::ReadBefore() {
    check::Line line{};
    if (!track_.empty()) {
        line = check::LineAt(track_, 0);
        host::ParserHandle parser(module_, capture_);
        if (parser.Feed(track_.data(), static_cast<unsigned int>(line.end)) ==
            WEBVTT_RESULT_ERROR) {
            return;
        }
    }
    std::uint32_t number = 1;
    while (line.end < track_.size() && (number == 1 || !EndsHeader(line.all))) {
        line = check::LineAt(track_, line.end);
        ++number;
    }
    check::BlockReader reader(track_, line.end, number + 1);
    while (const std::optional<check::Block> block = reader.Next()) {
        befores_.push_back({*block});
    }
}

Verifier::Whole Verifier::Play(std::string_view track) {
    Whole whole;
    capture_.Forget();
    host::ParserHandle parser(module_, capture_);
    Taker taker(whole.cues);
    for (const std::string_view piece : {track, host::kClosingLineFeeds}) {
        try {
            whole.cut = parser.Feed(piece.data(), static_cast<unsigned int>(piece.size())) ==
                            WEBVTT_RESULT_ERROR ||
                        whole.cut;
        } catch (const host::ModuleThrew&) {
            whole.cut = true;  // what was read before is delivered
        }
        parser.Deliver(taker);
        capture_.Forget();
    }
    std::vector<check::PlayedCue> zero;
    Taker zero_taker(zero);
    try {
        parser.Feed(kCueAtZero.data(), static_cast<unsigned int>(kCueAtZero.size()));
    } catch (const host::ModuleThrew&) {
        // Still in a header that throws: nothing was delivered, and nothing needs an offset.
    }
    parser.Deliver(zero_taker);
    whole.offset = zero.empty() ? 0 : zero.back().start;
    return whole;
}

// Marks the block as the same when the very same lines are a block of the track as it was read.
// `next` is where to look on.
void Verifier::FindBefore(After& block, const Document& outcome, std::size_t& next) {
    const std::vector<Line>& lines = outcome.lines();
    for (std::size_t index = block.first; index < block.first + block.size; ++index) {
        if (lines[index].note >= 0 || lines[index].inserted) {
            return;
        }
    }
    const std::uint32_t number = lines[block.first].number;
    while (next < befores_.size() && befores_[next].block.first_line < number) {
        ++next;
    }
    if (next < befores_.size() && befores_[next].block.first_line == number &&
        befores_[next].block.line_count == block.size &&
        lines[block.first + block.size - 1].number == number + block.size - 1) {
        block.same = true;
        befores_[next].after = afters_.size();
    }
}

// Whether a fix that made the block what it is meant to make a cue of it.
bool Verifier::IsMeantForCue(const Document& outcome, const Range& block) {
    return std::any_of(
        outcome.lines().begin() + static_cast<std::ptrdiff_t>(block.begin),
        outcome.lines().begin() + static_cast<std::ptrdiff_t>(block.end),
        [](const Line& line) { return line.timing || line.inserted || line.note >= 0; });
}

// Whether a line of the block stood in one that gave a cue.
bool Verifier::CostsCue(const Document& outcome, const Range& block) {
    const std::uint32_t begin = outcome.lines()[block.begin].number;
    const std::uint32_t end = outcome.lines()[block.end - 1].number;
    auto before =
        std::partition_point(befores_.begin(), befores_.end(), [begin](const Before& one) {
            return one.block.first_line + one.block.line_count <= begin;
        });
    for (; before != befores_.end() && before->block.first_line <= end; ++before) {
        if (Ask(*before).fate == check::Fate::kDelivered) {
            return true;
        }
    }
    return false;
}

const check::Verdict& Verifier::Ask(const Before& before) {
    return oracle_.Block(track_.substr(before.block.begin, before.block.end - before.block.begin),
                         before.block.is_open);
}

std::set<std::uint32_t> Verifier::Survey(const Document& outcome) {
    const std::vector<Line>& lines = outcome.lines();
    std::set<std::uint32_t> undelivered;
    afters_.clear();
    broken_.reset();
    for (Before& before : befores_) {
        before.after = SIZE_MAX;
    }
    text_ = outcome.Text();
    for (const Line& line : outcome.gone()) {
        if (!MayGo(outcome, line)) {
            broken_ = AtLine(line.number, "text would be lost");
        }
    }
    std::size_t begin = 0;
    const std::size_t header_end = std::min(outcome.HeaderEnd() + 1, lines.size());
    for (std::size_t index = 0; index < header_end; ++index) {
        begin += lines[index].text.size() + lines[index].end.size();
    }
    check::BlockReader reader(text_, begin, static_cast<std::uint32_t>(header_end) + 1);
    std::size_t next = 0;
    while (const std::optional<check::Block> block = reader.Next()) {
        After after{block->first_line - 1, block->line_count};
        if (after.first + after.size > lines.size()) {
            broken_ = "the lines would be others";
            break;
        }
        FindBefore(after, outcome, next);
        const std::string_view text =
            std::string_view(text_).substr(block->begin, block->end - block->begin);
        const check::Verdict& verdict = oracle_.Block(text, block->is_open);
        after.fate = verdict.fate;
        const Range range{after.first, after.first + after.size};
        if (verdict.fate == check::Fate::kDelivered) {
            const check::CueCopy cue = verdict.cue;
            after.cue = {cue.start, cue.end, check::Fingerprint(cue), 0};
            if (!after.same && !broken_) {
                if (const auto words = CheckNotes(outcome, range, cue, oracle_)) {
                    broken_ = AtLine(lines[range.begin].number, *words);
                }
            }
        } else if (!after.same && !check::IsCommentLine(lines[range.begin].text) &&
                   (IsMeantForCue(outcome, range) || CostsCue(outcome, range))) {
            for (std::size_t index = range.begin; index < range.end; ++index) {
                undelivered.insert(lines[index].number);
            }
        }
        afters_.push_back(after);
    }
    return undelivered;
}

// Every text that the block showed stands in a block that makes a cue, or is gone by name.
bool Verifier::KeepText(const Before& before, const Document& outcome) {
    const std::vector<Line>& lines = outcome.lines();
    const std::uint32_t begin = before.block.first_line;
    const std::uint32_t end = begin + before.block.line_count;
    auto after =
        std::partition_point(afters_.begin(), afters_.end(), [&lines, begin](const After& block) {
            return lines[block.first + block.size - 1].number < begin;
        });
    for (; after != afters_.end() && lines[after->first].number < end; ++after) {
        after->must_play = after->fate == check::Fate::kDelivered;
        const bool has_text =
            std::any_of(lines.begin() + static_cast<std::ptrdiff_t>(after->first),
                        lines.begin() + static_cast<std::ptrdiff_t>(after->first + after->size),
                        [&](const Line& line) {
                            return line.number >= begin && line.number < end && !line.inserted &&
                                   !line.timing && line.number > begin;
                        });
        if (!after->must_play && has_text) {
            return false;
        }
    }
    return true;
}

// Finds every cue that a player got before, and the blocks that stand for it now.
std::optional<std::string> Verifier::AccountForBefore(const Whole& whole, const Document& outcome) {
    std::size_t next = 0;
    for (const Before& before : befores_) {
        if (next == whole.cues.size()) {
            return std::nullopt;
        }
        After* const same = before.after == SIZE_MAX ? nullptr : &afters_[before.after];
        check::PlayedCue alone{};
        if (same != nullptr) {
            if (same->fate != check::Fate::kDelivered) {
                continue;
            }
            alone = same->cue;
        } else {
            const check::Verdict& verdict = Ask(before);
            if (verdict.fate != check::Fate::kDelivered) {
                continue;
            }
            alone = {verdict.cue.start, verdict.cue.end, check::Fingerprint(verdict.cue), 0};
        }
        if (!IsThat(whole.cues[next], alone, whole.offset)) {
            continue;
        }
        ++next;
        if (same != nullptr) {
            same->must_play = true;
        } else if (!KeepText(before, outcome)) {
            return AtLine(before.block.first_line, "text would be lost");
        }
    }
    if (next < whole.cues.size()) {
        return "a cue that is delivered now is not found in any block";
    }
    return std::nullopt;
}

// Finds every cue that a player gets among the blocks that make one alone. Unless a block that was
// left as it is costs others, that is all of them.
std::optional<std::string> Verifier::AccountForAfter(const Whole& whole) {
    const bool costs =
        whole.cut || std::any_of(afters_.begin(), afters_.end(), [](const After& after) {
            return after.fate != check::Fate::kDelivered && after.fate != check::Fate::kFailed;
        });
    std::size_t next = 0;
    for (const After& after : afters_) {
        if (after.fate != check::Fate::kDelivered) {
            continue;
        }
        if (next < whole.cues.size() && IsThat(whole.cues[next], after.cue, whole.offset)) {
            ++next;
        } else if (after.must_play || !costs) {
            return "a cue would not be delivered";
        }
    }
    if (next < whole.cues.size()) {
        return "a cue would come that is in no block";
    }
    return std::nullopt;
}

std::optional<std::string> Verifier::Verify(const Document& outcome,
                                            const std::optional<double>& offset) {
    if (broken_) {
        return broken_;
    }
    const Whole before = Play(track_);
    const Whole after = Play(text_);
    if (std::optional<std::string> words = AccountForBefore(before, outcome)) {
        return words;
    }
    // Without a cue there is nothing that the old offset was for.
    const double expected = offset.value_or(before.cues.empty() ? after.offset : before.offset);
    if (std::abs(after.offset - expected) > kRounding) {
        return "all times would be shifted otherwise";
    }
    return AccountForAfter(after);
}

}  // namespace quill::fix
