// What the fed bytes say of a parser's blocks, seen from outside.
#pragma once

#include <string_view>

namespace guard {

/// Follows a track's blocks far enough to tell whether one is unfinished and whether cues have been
/// completed. Reads little: the end of a chunk, and from its first arrow to the next blank line.
/// What it says is an estimate, for a block may be a comment, or no cue because it is damaged.
class BlockTracker {
  public:
    /// A chunk that the module read to its end.
    void feed(std::string_view chunk);

    /// The rest of a chunk was lost: what was unfinished is gone as well.
    void lose_rest();

    /// The cues completed so far have been taken.
    void take() { m_has_cues = false; }

    /// Whether the last block has content and no blank line behind it.
    bool is_unfinished() const { return m_is_open; }

    /// Whether cues were completed since they were last taken.
    bool has_cues() const { return m_has_cues; }

  private:
    void follow_end(std::string_view chunk);

    bool m_is_open = false;
    bool m_has_arrow = false;    ///< the open block has a timing line
    bool m_ends_in_line = true;  ///< the last byte fed ended no line
    bool m_ends_in_cr = false;
    bool m_has_cues = false;
};

}  // namespace guard
