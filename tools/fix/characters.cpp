#include "tools/fix/characters.h"

#include <algorithm>
#include <iterator>

#include "tools/check/characters.h"
#include "tools/console/escape.h"

namespace quill::fix {
namespace {

constexpr char kUnseen = '\0';

struct Look {
    char32_t first;
    char32_t last;
    char plain;
};

// What stands for an arrow or a part of one, and what else is not seen in it.
constexpr Look kLooks[] = {
    {0x2010, 0x2015, '-'},           {0x2061, 0x2065, kUnseen},
    {0x2212, 0x2212, '-'},           {0xFF0D, 0xFF0D, '-'},
    {0x203A, 0x203A, '>'},           {0xFF1E, 0xFF1E, '>'},
    {0x2192, 0x2192, Looks::kArrow}, {0x21D2, 0x21D2, Looks::kArrow},
    {0x2794, 0x2794, Looks::kArrow}, {0x279C, 0x279C, Looks::kArrow},
    {0x27F6, 0x27F6, Looks::kArrow}, {0x2236, 0x2236, ':'},
    {0xFE0F, 0xFE0F, kUnseen},
};

char LookOf(const console::Character& character) {
    if (!character.is_valid) {
        return Looks::kOther;
    }
    if (const check::LookAlike* const known = check::LookAlikeOf(character.code_point)) {
        return *known->plain;  // one character, or none
    }
    const auto* const found =
        std::find_if(std::begin(kLooks), std::end(kLooks), [&character](const Look& look) {
            return look.first <= character.code_point && character.code_point <= look.last;
        });
    if (found != std::end(kLooks)) {
        return found->plain;
    }
    return character.code_point < 0x80 ? static_cast<char>(character.code_point) : Looks::kOther;
}

}  // namespace

Looks::Looks(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const console::Character character = console::FirstCharacter(text.substr(at));
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
    return text.empty() || check::LooksBlank(text);
}

}  // namespace quill::fix
