// Finds the cues of a play again among the blocks that make cues alone.
#ifndef TOOLS_CHECK_CUE_MATCHER_H_
#define TOOLS_CHECK_CUE_MATCHER_H_

#include <cstddef>
#include <vector>

#include "tools/check/lone_parser.h"
#include "tools/check/play.h"

namespace quill::check {

class CueMatcher {
  public:
    enum class Match {
        kSame,
        kOther,  // the same times with another text or other settings
        kNone,
    };

    // The play must outlive the matcher.
    explicit CueMatcher(const Play& play) : play_(play) {}

    // Whether the cue, which some block makes alone, has come with that chunk. Ask in the order
    // of the track.
    Match Find(const CueCopy& cue, std::size_t chunk);

    // Which cue of the play that is, counted from 1, when Find has just found one.
    std::size_t found() const { return next_; }

    // The cues from before that chunk, and those that Find has passed over, that belong to no
    // block, counted from 1. Each is returned once.
    std::vector<std::size_t> TakeStrays(std::size_t chunk);

  private:
    bool HasTimesOf(const PlayedCue& played, const CueCopy& cue) const;

    const Play& play_;
    std::size_t next_ = 0;
    std::vector<std::size_t> strays_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_CUE_MATCHER_H_
