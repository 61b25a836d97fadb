#include "tools/check/finding.h"

#include <cstddef>

#include "tools/console/escape.h"

namespace quill::check {

std::string Quoted(std::string_view text) {
    constexpr std::size_t kMostBytes = 40;
    if (text.size() <= kMostBytes) {
        return '"' + console::Escape(text, console::LineFeeds::kEscape) + '"';
    }
    std::size_t end = kMostBytes;
    while (end > kMostBytes - 3 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) {
        --end;  // not through the middle of a character
    }
    return '"' + console::Escape(text.substr(0, end), console::LineFeeds::kEscape) + "...\"";
}

}  // namespace quill::check
