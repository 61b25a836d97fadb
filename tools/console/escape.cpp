#include "tools/console/escape.h"

#include <cstddef>

namespace quill::console {
namespace {

constexpr std::size_t kInvalid = 0;

unsigned ByteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool IsContinuation(unsigned byte) {
    return (byte & 0xC0u) == 0x80u;
}

// The length in bytes of the UTF-8 character that the text begins with, and its code point;
// kInvalid for an overlong form, a surrogate, a value beyond U+10FFFF or a broken sequence.
std::size_t DecodeFirst(std::string_view text, unsigned& code_point) {
    const unsigned lead = ByteAt(text, 0);
    if (lead < 0x80u) {
        code_point = lead;
        return 1;
    }
    const std::size_t length = lead < 0xC0u   ? kInvalid
                               : lead < 0xE0u ? 2
                               : lead < 0xF0u ? 3
                               : lead < 0xF8u ? 4
                                              : kInvalid;
    if (length == kInvalid || length > text.size()) {
        return kInvalid;
    }
    code_point = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(ByteAt(text, i))) {
            return kInvalid;
        }
        code_point = code_point << 6 | (ByteAt(text, i) & 0x3Fu);
    }
    const bool overlong = code_point < (length == 2 ? 0x80u : length == 3 ? 0x800u : 0x10000u);
    const bool surrogate = code_point >= 0xD800u && code_point <= 0xDFFFu;
    return overlong || surrogate || code_point > 0x10FFFFu ? kInvalid : length;
}

bool IsShown(char32_t code_point, LineFeeds line_feeds) {
    if (code_point == '\n') {
        return line_feeds == LineFeeds::kKeep;
    }
    return code_point == '\t' || (code_point >= 0x20u && code_point < 0x7Fu) || code_point > 0x9Fu;
}

void AppendEscaped(std::string_view bytes, std::string& out) {
    static const char kDigits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out += "\\x";
        out += kDigits[ByteAt(bytes, i) >> 4];
        out += kDigits[ByteAt(bytes, i) & 0x0Fu];
    }
}

}  // namespace

std::string Escape(std::string_view text, LineFeeds line_feeds) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (character.is_valid && IsShown(character.code_point, line_feeds)) {
            out += text.substr(0, character.size);
        } else {
            AppendEscaped(text.substr(0, character.size), out);
        }
        text.remove_prefix(character.size);
    }
    return out;
}

std::string PercentCode(char byte) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    return {'%', kDigits[value >> 4], kDigits[value & 0x0Fu]};
}

Character FirstCharacter(std::string_view text) {
    unsigned code_point = 0;
    const std::size_t length = DecodeFirst(text, code_point);
    return {code_point, length == kInvalid ? 1 : length, length != kInvalid};
}

std::string Utf8(char32_t code_point) {
    const auto tail = [code_point](int shift) {
        return static_cast<char>(0x80u | (code_point >> shift & 0x3Fu));
    };
    const auto lead = [code_point](unsigned mark, int shift) {
        return static_cast<char>(mark | code_point >> shift);
    };
    if (code_point < 0x80) {
        return {lead(0, 0)};
    }
    if (code_point < 0x800) {
        return {lead(0xC0, 6), tail(0)};
    }
    if (code_point < 0x10000) {
        return {lead(0xE0, 12), tail(6), tail(0)};
    }
    return {lead(0xF0, 18), tail(12), tail(6), tail(0)};
}

std::size_t FindInvalid(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const Character character = FirstCharacter(text.substr(at));
        if (!character.is_valid) {
            return at;
        }
        at += character.size;
    }
    return std::string_view::npos;
}

}  // namespace quill::console
