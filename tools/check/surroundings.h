// What stands above and below a block, as far as it explains why the block is lost.
#ifndef TOOLS_CHECK_SURROUNDINGS_H_
#define TOOLS_CHECK_SURROUNDINGS_H_

#include <cstdint>
#include <string_view>

#include "tools/check/track_text.h"

namespace quill::check {

// By the form of a block, not by what the module makes of it.
enum class BlockForm { kNothing, kCue, kComment, kText };

struct Surroundings {
    bool operator==(const Surroundings& other) const {
        return above == other.above && below == other.below &&
               blank_lines_below == other.blank_lines_below &&
               ends_in_two_returns == other.ends_in_two_returns;
    }

    BlockForm above = BlockForm::kNothing;
    BlockForm below = BlockForm::kNothing;
    std::uint32_t blank_lines_below = 0;
    bool ends_in_two_returns = false;  // CR CR LF, which is a line end and a blank line
};

Surroundings LookAround(std::string_view track, const Block& block, BlockForm above);

// NOTE, STYLE or REGION as an editor writes them.
bool IsCommentLine(std::string_view line);
bool IsStyleLine(std::string_view line);

}  // namespace quill::check

#endif  // TOOLS_CHECK_SURROUNDINGS_H_
