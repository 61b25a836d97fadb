#include "tools/check/play.h"

#include <algorithm>
#include <utility>

#include "tools/check/module_words.h"
#include "tools/host/track_reader.h"

namespace quill::check {
namespace {}  // namespace

const EarlyEnd* Play::FindEarlyEnd(std::size_t first_chunk, std::size_t last_chunk) const {
    const auto found = std::lower_bound(
        early_ends.begin(), early_ends.end(), first_chunk,
        [](const EarlyEnd& early_end, std::size_t chunk) { return early_end.chunk < chunk; });
    return found != early_ends.end() && found->chunk <= last_chunk ? &*found : nullptr;
}

class Player::Taker : public host::CueSink {
  public:
    Taker(std::vector<PlayedCue>& cues, std::size_t chunk) : cues_(cues), chunk_(chunk) {}
    void Add(const WebvttCueNode& cue) override {
        copy_.Assign(cue);
        cues_.push_back({copy_.start, copy_.end, Fingerprint(copy_), chunk_});
    }
    void Flush() override {}

  private:
    std::vector<PlayedCue>& cues_;
    std::size_t chunk_;
    CueCopy copy_;
};

Player::Player(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               std::string_view track, const ChunkPlan& plan, const ThrowingMaps& throwing_maps,
               std::uint32_t video_pts)
    : capture_(capture),
      track_(track),
      plan_(plan),
      throwing_maps_(throwing_maps),
      parser_(module, capture) {
    parser_.SetVideoPts(video_pts);
    capture_.Forget();
}

Play Player::Run(TrackReport& report) {
    for (std::size_t chunk = 0; chunk < plan_.count(); ++chunk) {
        const std::size_t begin = plan_.Begin(chunk);
        Feed(track_.substr(begin, plan_.End(chunk) - begin), chunk);
        report.ShowProgress(plan_.End(chunk) / 4, track_.size());
    }
    Feed(host::kClosingLineFeeds, plan_.count());
    play_.offset = AskOffset();
    return std::move(play_);
}

// The bytes are copied, so that a tool which watches memory sees every read beyond their end.
void Player::Feed(std::string_view bytes, std::size_t chunk) {
    const std::size_t cues_before = play_.cues.size();
    const host::Chunk copy(bytes.data(), static_cast<unsigned int>(bytes.size()), 0);
    std::optional<int> result;
    try {
        result = parser_.Feed(copy.data.get(), copy.size);
    } catch (const host::ModuleThrew&) {
        // No result: the module threw.
    }
    Taker taker(play_.cues, chunk);
    parser_.Deliver(taker);
    NoteEnd(result, chunk, cues_before);
}

void Player::NoteEnd(std::optional<int> result, std::size_t chunk, std::size_t cues_before) {
    const bool was_in_header = in_header_;
    const auto map = throwing_maps_.find(chunk);
    const bool has_map = map != throwing_maps_.end();
    in_header_ = in_header_ && (result ? *result == WEBVTT_RESULT_HEADER : has_map);
    if (was_in_header) {
        play_.header_chunk = chunk;
    }
    if (!result) {
        play_.early_ends.push_back({chunk, Fate::kThrew, in_header_ ? map->second : 0});
    } else if (*result == WEBVTT_RESULT_ERROR) {
        play_.early_ends.push_back({chunk, Fate::kRefused, 0});
    } else if (play_.cues.size() == cues_before && !in_header_ && EndsByError()) {
        play_.early_ends.push_back({chunk, Fate::kError, 0});
    }
    capture_.Forget();
}

// Whether the first block of the chunk gave the chunk up: that block's is the only error then,
// and no block before it failed.
bool Player::EndsByError() {
    constexpr std::size_t kMostPrinted = 1 << 20;
    const std::string printed = capture_.Read(0, kMostPrinted);
    const std::size_t error = printed.find(words::kError);
    return error != std::string::npos && error < printed.find(words::kFailed);
}

double Player::AskOffset() {
    std::vector<PlayedCue> cues;
    Taker taker(cues, 0);
    try {
        parser_.Feed(kCueAtZero.data(), static_cast<unsigned int>(kCueAtZero.size()));
    } catch (const host::ModuleThrew&) {
        // Still in a header that throws, so nothing was delivered and nothing needs an offset.
    }
    parser_.Deliver(taker);
    return cues.empty() ? 0 : cues.back().start;
}

}  // namespace quill::check
