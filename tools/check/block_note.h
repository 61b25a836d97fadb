// What became of one block, for those who want to know it of every block.
#ifndef TOOLS_CHECK_BLOCK_NOTE_H_
#define TOOLS_CHECK_BLOCK_NOTE_H_

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tools/check/sums.h"

namespace quill::check {

// In seconds, with what the map and the video's time add to every time.
struct BlockTimes {
    double start;
    double end;
};

struct BlockNote {
    std::uint32_t line;        // the first one, of the track, from 1
    std::uint32_t line_count;  // 0: no block, but a cue made of remains of the chunk before
    std::size_t chunk;         // that completes it, from 0
    ByteClass fate;            // kSignature stands for the header as a whole
    std::size_t cue = 0;       // that it makes in the play, from 1; 0 for none
    // Of a cue that does not arrive, where they can be told.
    std::optional<BlockTimes> times{};
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_BLOCK_NOTE_H_
