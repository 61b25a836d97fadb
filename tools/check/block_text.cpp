#include "tools/check/block_text.h"

#include <algorithm>

#include "tools/check/meant_timing.h"

namespace quill::check {
namespace {

std::string_view TrimSpaces(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

void BlockText::Read(std::string_view track, const Block& block) {
    lines_.clear();
    for (std::size_t at = block.begin; at < block.end; at = lines_.back().end) {
        lines_.push_back(LineAt(track, at));
    }
    first_line_ = block.first_line;
}

bool BlockText::HasZeroByte() const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [](const Line& line) { return line.is_cut(); });
}

bool BlockText::HasArrow(std::size_t index) const {
    return index < size() && text(index).find(kArrow) != std::string_view::npos;
}

std::size_t BlockText::ArrowLine() const {
    std::size_t index = 0;
    while (index < size() && !HasArrow(index)) {
        ++index;
    }
    return index;
}

TimingLine BlockText::Timing() const {
    const std::string_view whole = text(TimingIndex());
    const std::size_t arrow = std::min(whole.find(kArrow), whole.size());
    const std::string_view rest =
        TrimSpaces(whole.substr(std::min(arrow + kArrow.size(), whole.size())));
    const std::size_t end = std::min(rest.find(' '), rest.size());
    return {TrimSpaces(whole.substr(0, arrow)), rest.substr(0, end), rest.substr(end)};
}

std::string BlockText::Payload() const {
    std::string payload;
    for (std::size_t index = TimingIndex() + 1; index < size(); ++index) {
        payload += text(index);
        payload += line(index).is_cut() ? "" : "\n";
    }
    return payload;
}

BlockPlace BlockText::PlaceInPayload(std::size_t byte) const {
    BlockPlace place = {TimingIndex() + 1, byte};
    for (; place.line + 1 < size(); ++place.line) {
        const std::size_t bytes = text(place.line).size() + (line(place.line).is_cut() ? 0 : 1);
        if (place.byte < bytes) {
            break;
        }
        place.byte -= bytes;
    }
    return place;
}

}  // namespace quill::check
