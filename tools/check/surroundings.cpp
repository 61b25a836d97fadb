#include "tools/check/surroundings.h"

#include "tools/check/meant_timing.h"

namespace quill::check {
namespace {

BlockForm FormAt(std::string_view track, std::size_t begin) {
    if (begin >= track.size()) {
        return BlockForm::kNothing;
    }
    const Line first = LineAt(track, begin);
    if (HasArrow(first.text) ||
        (first.end < track.size() && HasArrow(LineAt(track, first.end).text))) {
        return BlockForm::kCue;
    }
    return IsCommentLine(first.text) || IsStyleLine(first.text) ? BlockForm::kComment
                                                                : BlockForm::kText;
}

}  // namespace

bool IsCommentLine(std::string_view line) {
    return line.substr(0, 4) == "NOTE" && (line.size() == 4 || line[4] == ' ' || line[4] == '\t');
}

bool IsStyleLine(std::string_view line) {
    const std::string_view word = line.substr(0, line.find_last_not_of(" \t") + 1);
    return word == "STYLE" || word == "REGION";
}

Surroundings LookAround(std::string_view track, const Block& block, BlockForm above) {
    Surroundings around;
    around.above = above;
    std::size_t at = block.end;
    while (at < track.size()) {
        const Line line = LineAt(track, at);
        if (!line.is_blank()) {
            break;
        }
        around.blank_lines_below += line.ended ? 1 : 0;
        at = line.end;
    }
    around.below = FormAt(track, at);
    around.ends_in_two_returns =
        track[block.end - 1] == '\r' && track.substr(block.end, 2) == "\r\n";
    return around;
}

}  // namespace quill::check
