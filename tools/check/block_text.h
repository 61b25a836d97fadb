// The lines of one block, as far as the reasons for a verdict can be read from them.
#ifndef TOOLS_CHECK_BLOCK_TEXT_H_
#define TOOLS_CHECK_BLOCK_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/check/surroundings.h"
#include "tools/check/track_text.h"

namespace quill::check {

// What stands on a timing line, without the spaces between.
struct TimingLine {
    std::string_view start;
    std::string_view end;
    std::string_view settings;
};

// A byte of a block.
struct BlockPlace {
    std::size_t line;  // of the block
    std::size_t byte;  // of the line's text; npos for the line as a whole
};

class BlockText {
  public:
    // Takes the place of the block before. The track must outlive what is asked of this one.
    void Read(std::string_view track, const Block& block);

    std::size_t size() const { return lines_.size(); }
    const Line& line(std::size_t index) const { return lines_[index]; }
    std::string_view text(std::size_t index) const { return lines_[index].text; }
    // Of the track, for a line of the block.
    std::uint32_t number(std::size_t index) const {
        return first_line_ + static_cast<std::uint32_t>(index);
    }

    bool HasZeroByte() const;
    // NOTE, alone or with something behind it on its line.
    bool IsComment() const { return IsCommentLine(text(0)); }
    // STYLE or REGION alone.
    bool IsStyle() const { return IsStyleLine(text(0)); }
    // The first line with an arrow, or size() when there is none.
    std::size_t ArrowLine() const;

    // The rest is for blocks that have a timing line as their first or second line.
    std::size_t TimingIndex() const { return HasArrow(0) || size() == 1 ? 0 : 1; }
    TimingLine Timing() const;
    // The lines below, each with a line feed, as the module reads them.
    std::string Payload() const;
    // Where a byte of the payload stands.
    BlockPlace PlaceInPayload(std::size_t byte) const;

  private:
    bool HasArrow(std::size_t index) const;

    std::vector<Line> lines_;
    std::uint32_t first_line_ = 1;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_BLOCK_TEXT_H_
