#include "tools/check/cue_matcher.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quill::check {
namespace {

// Where a chunk was given up, the remains of a block make up a cue or two at the most before the
// next whole block.
constexpr std::size_t kMostPassedOver = 8;

bool AreClose(double one, double other) {
    constexpr double kTolerance = 1e-9;
    return std::fabs(one - other) <= kTolerance * std::max(1.0, std::fabs(one));
}

}  // namespace

bool CueMatcher::HasTimesOf(const PlayedCue& played, const CueCopy& cue) const {
    return AreClose(played.start, play_.offset + cue.start) &&
           AreClose(played.end, play_.offset + cue.end);
}

CueMatcher::Match CueMatcher::Find(const CueCopy& cue, std::size_t chunk) {
    const std::vector<PlayedCue>& cues = play_.cues;
    const std::uint32_t fingerprint = Fingerprint(cue);
    const std::size_t last = std::min(next_ + kMostPassedOver, cues.size());
    for (std::size_t at = next_; at < last && cues[at].chunk <= chunk; ++at) {
        if (cues[at].chunk == chunk && cues[at].fingerprint == fingerprint &&
            HasTimesOf(cues[at], cue)) {
            while (next_ < at) {
                strays_.push_back(++next_);
            }
            ++next_;
            return Match::kSame;
        }
    }
    if (next_ < cues.size() && cues[next_].chunk == chunk && HasTimesOf(cues[next_], cue)) {
        ++next_;
        return Match::kOther;
    }
    return Match::kNone;
}

std::vector<std::size_t> CueMatcher::TakeStrays(std::size_t chunk) {
    while (next_ < play_.cues.size() && play_.cues[next_].chunk < chunk) {
        strays_.push_back(++next_);
    }
    return std::exchange(strays_, {});
}

}  // namespace quill::check
