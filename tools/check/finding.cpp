#include "tools/check/finding.h"

#include <cstddef>

#include "tools/escape.h"

namespace quill {

std::string Quoted(std::string_view text) {
    constexpr std::size_t kMostBytes = 40;
    if (text.size() <= kMostBytes) {
        return '"' + Escape(text, LineFeeds::kEscape) + '"';
    }
    std::size_t end = kMostBytes;
    while (end > kMostBytes - 3 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) {
        --end;  // not through the middle of a character
    }
    return '"' + Escape(text.substr(0, end), LineFeeds::kEscape) + "...\"";
}

}  // namespace quill
