// Why a block that makes a cue alone makes none in its chunk.
#ifndef TOOLS_CHECK_NEIGHBOURS_H_
#define TOOLS_CHECK_NEIGHBOURS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"
#include "tools/check/play.h"
#include "tools/check/track_text.h"

namespace quill::check {

// Remembers, going through the blocks in the order of the track, which of them gave a chunk up.
class Neighbours {
  public:
    // All that is given must outlive this.
    Neighbours(std::string_view track, const ChunkPlan& plan, const Play& play);

    // `line` is where the block is at fault, if it is.
    void Note(const Block& block, const Verdict& verdict, std::uint32_t line);

    // For a block that the verdict says is delivered, and that was not. Ask before Note.
    Finding Explain(const Block& block, const Verdict& verdict) const;

    // The line that gave the chunk up; 0 for none. Known for the last two that were given up.
    std::uint32_t CulpritIn(std::size_t chunk) const;

  private:
    struct Culprit {
        std::size_t chunk;
        std::uint32_t line;
    };

    bool HasSkippedLineFeed(std::size_t begin, std::size_t end) const;

    std::string_view track_;
    const ChunkPlan& plan_;
    const Play& play_;
    std::size_t carriage_return_;     // the first one
    std::size_t block_before_ = 0;    // where it begins
    std::optional<Culprit> culprit_;  // the last one
    std::optional<Culprit> culprit_before_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_NEIGHBOURS_H_
