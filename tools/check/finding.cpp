#include "tools/check/finding.h"

#include <cstddef>

#include "tools/check/characters.h"

namespace quill::check {

namespace {

std::string QuotedUpTo(std::size_t most_bytes, std::string_view text) {
    if (text.size() <= most_bytes) {
        return '"' + Visible(text) + '"';
    }
    std::size_t end = most_bytes;
    while (end > most_bytes - 3 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) {
        --end;  // not through the middle of a character
    }
    return '"' + Visible(text.substr(0, end)) + "...\"";
}

}  // namespace

std::string Quoted(std::string_view text) {
    constexpr std::size_t kFewWords = 40;
    return QuotedUpTo(kFewWords, text);
}

std::string QuotedWhole(std::string_view text) {
    constexpr std::size_t kLongestLine = 400;
    return QuotedUpTo(kLongestLine, text);
}

}  // namespace quill::check
