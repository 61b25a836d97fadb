// What is worth saying about a cue beside those before it.
#ifndef TOOLS_CHECK_ORDER_REMARKS_H_
#define TOOLS_CHECK_ORDER_REMARKS_H_

#include <cstdint>
#include <unordered_map>

#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"

namespace quill::check {

// Remembers, going through the delivered cues in the order of the track.
class OrderRemarks {
  public:
    // `line` is that of the cue's times.
    void Examine(const CueCopy& cue, std::uint32_t line, Findings& findings);

  private:
    bool IsRepeated(const CueCopy& cue, std::uint32_t line, Findings& findings);

    struct Seen {
        double start = 0;
        double end = 0;
        std::uint32_t line = 0;  // none is 0
        // Where it is shown: cues in other places may be shown at the same time.
        std::int32_t place = 0;
        int position = 0;
    };

    Seen last_;
    Seen longest_;                                            // the one that ends last
    std::unordered_map<std::uint64_t, std::uint32_t> lines_;  // by what the cue says, and when
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_ORDER_REMARKS_H_
