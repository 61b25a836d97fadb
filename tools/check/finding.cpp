#include "tools/check/finding.h"

#include "tools/check/characters.h"
#include "tools/console/escape.h"

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

Finding Finding::At(std::string_view text, std::size_t byte) const {
    Finding finding = *this;
    if (byte > text.size()) {  // what was looked for is not there
        return finding;
    }
    finding.column = 1;
    for (text = text.substr(0, byte); !text.empty(); ++finding.column) {
        text.remove_prefix(console::FirstCharacter(text).size);
    }
    return finding;
}

Finding Finding::Because(std::uint32_t other_line) const {
    Finding finding = *this;
    finding.cause_line = other_line;
    return finding;
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t kFewWords = 40;
    return QuotedUpTo(kFewWords, text);
}

std::string QuotedWhole(std::string_view text) {
    constexpr std::size_t kLongestLine = 400;
    return QuotedUpTo(kLongestLine, text);
}

}  // namespace quill::check
