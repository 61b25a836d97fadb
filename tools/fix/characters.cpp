#include "tools/fix/characters.h"

#include <algorithm>
#include <iterator>

namespace quill::fix {
namespace {

constexpr char kUnseen = '\0';

struct Look {
    std::uint32_t first;
    std::uint32_t last;
    char plain;  // of the first; digits count up from there
};

// In the order of the code points.
constexpr Look kLooks[] = {
    {0x00A0, 0x00A0, ' '},
    {0x00AD, 0x00AD, kUnseen},  // soft hyphen
    {0x2000, 0x200A, ' '},
    {0x200B, 0x200F, kUnseen},  // of no width, and marks of direction
    {0x2010, 0x2015, '-'},
    {0x2028, 0x2029, ' '},
    {0x202A, 0x202E, kUnseen},
    {0x202F, 0x202F, ' '},
    {0x203A, 0x203A, '>'},
    {0x205F, 0x205F, ' '},
    {0x2060, 0x2069, kUnseen},
    {0x2192, 0x2192, Looks::kArrow},
    {0x21D2, 0x21D2, Looks::kArrow},
    {0x2212, 0x2212, '-'},
    {0x2236, 0x2236, ':'},
    {0x2794, 0x2794, Looks::kArrow},
    {0x279C, 0x279C, Looks::kArrow},
    {0x27F6, 0x27F6, Looks::kArrow},
    {0x3000, 0x3000, ' '},
    {0xFE0F, 0xFE0F, kUnseen},
    {0xFEFF, 0xFEFF, kUnseen},
    {0xFF0C, 0xFF0C, ','},
    {0xFF0D, 0xFF0D, '-'},
    {0xFF0E, 0xFF0E, '.'},
    {0xFF10, 0xFF19, '0'},
    {0xFF1A, 0xFF1A, ':'},
    {0xFF1E, 0xFF1E, '>'},
};

char PlainOf(std::uint32_t code_point) {
    const Look* const found =
        std::lower_bound(std::begin(kLooks), std::end(kLooks), code_point,
                         [](const Look& look, std::uint32_t wanted) { return look.last < wanted; });
    if (found == std::end(kLooks) || code_point < found->first) {
        return Looks::kOther;
    }
    return found->plain == '0' ? static_cast<char>('0' + (code_point - found->first))
                               : found->plain;
}

struct Character {
    std::uint32_t code_point;
    std::size_t size;
};

// Takes a byte that begins no UTF-8 character for one of its own, which looks like nothing else.
Character CharacterAt(std::string_view text) {
    const auto byte = [text](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
    };
    const auto follows = [&](std::size_t index) { return (byte(index) & 0xC0u) == 0x80u; };
    if ((byte(0) & 0xE0u) == 0xC0u && follows(1)) {
        return {(byte(0) & 0x1Fu) << 6 | (byte(1) & 0x3Fu), 2};
    }
    if ((byte(0) & 0xF0u) == 0xE0u && follows(1) && follows(2)) {
        return {(byte(0) & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu), 3};
    }
    return {byte(0) < 0x80 ? byte(0) : 0xFFFD, 1};
}

char LookOf(const Character& character) {
    if (character.code_point >= 0x80) {
        return PlainOf(character.code_point);
    }
    return character.code_point == '\t' ? ' ' : static_cast<char>(character.code_point);
}

}  // namespace

Looks::Looks(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const Character character = CharacterAt(text.substr(at));
        const char look = LookOf(character);
        if (look != kUnseen) {
            text_ += look;
            begins_.push_back(static_cast<std::uint32_t>(at));
            ends_.push_back(static_cast<std::uint32_t>(at + character.size));
        }
        at += character.size;
    }
    begins_.push_back(static_cast<std::uint32_t>(text.size()));
    ends_.push_back(static_cast<std::uint32_t>(text.size()));
}

bool LooksBlank(std::string_view text) {
    while (!text.empty()) {
        const Character character = CharacterAt(text);
        const char look = LookOf(character);
        if ((look != ' ' && look != kUnseen) || character.code_point == 0) {
            return false;
        }
        text.remove_prefix(character.size);
    }
    return true;
}

std::string Utf8(std::uint32_t code_point) {
    const auto tail = [code_point](int shift) {
        return static_cast<char>(0x80u | (code_point >> shift & 0x3Fu));
    };
    if (code_point < 0x80) {
        return {static_cast<char>(code_point)};
    }
    if (code_point < 0x800) {
        return {static_cast<char>(0xC0u | code_point >> 6), tail(0)};
    }
    if (code_point < 0x10000) {
        return {static_cast<char>(0xE0u | code_point >> 12), tail(6), tail(0)};
    }
    return {static_cast<char>(0xF0u | code_point >> 18), tail(12), tail(6), tail(0)};
}

}  // namespace quill::fix
