#include "tools/fix/line_ends.h"

#include <algorithm>
#include <cstddef>

#include "tools/check/characters.h"
#include "tools/check/file_kind.h"
#include "tools/check/loss_reason.h"
#include "tools/check/meant_timing.h"
#include "tools/console/escape.h"

namespace quill::fix {
namespace {

constexpr std::string_view kKinds[] = {"\\r\\n", "\\n", "\\r", "\v", "\u0085", "\u2028", "\u2029"};

std::string Replaced(std::string_view track, std::string_view line_end) {
    std::string text;
    for (std::size_t at = 0; at < track.size();) {
        const std::size_t end = std::min(track.find(line_end, at), track.size());
        text.append(track.substr(at, end - at)).append(end < track.size() ? "\n" : "");
        at = end + line_end.size();
    }
    return text;
}

// A timing line above a text, and no sign that more was written out than line ends.
bool IsTrack(std::string_view text) {
    const std::size_t arrow = text.find(check::kArrow);
    return arrow != std::string_view::npos && text.find('\n', arrow) != std::string_view::npos &&
           text.rfind('\n', arrow) != std::string_view::npos &&
           text.find('\\') == std::string_view::npos;
}

}  // namespace

std::optional<LineEnds> FindLineEnds(std::string_view track) {
    const std::size_t last = track.find_last_not_of("\r\n");
    const std::string_view line = track.substr(0, last == std::string_view::npos ? 0 : last + 1);
    if (line.find_first_of("\r\n") != std::string_view::npos) {
        return std::nullopt;
    }
    for (const std::string_view kind : kKinds) {
        const std::size_t end = line.find(kind);
        if (end == std::string_view::npos || !check::IsSignature(line.substr(0, end))) {
            continue;
        }
        std::string text = Replaced(track, kind);
        if (!IsTrack(text)) {
            return std::nullopt;
        }
        const bool is_written_out = kind[0] == '\\';
        return LineEnds{is_written_out ? std::string(kind)
                                       : check::NameOf(console::FirstCharacter(kind).code_point),
                        std::move(text)};
    }
    return std::nullopt;
}

}  // namespace quill::fix
