#include "tools/fix/references.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "tools/check/references.h"
#include "tools/fix/characters.h"

namespace quill::fix {
namespace {

struct Kept {
    std::string_view name;
    std::string_view character;
};

constexpr std::array<Kept, 6> kKept = {{{"amp", "&"},
                                        {"lt", "<"},
                                        {"gt", ">"},
                                        {"lrm", "\xE2\x80\x8E"},
                                        {"rlm", "\xE2\x80\x8F"},
                                        {"nbsp", "\xC2\xA0"}}};

const Kept* FindKept(std::string_view name) {
    const auto* const found = std::find_if(kKept.begin(), kKept.end(),
                                           [name](const Kept& kept) { return kept.name == name; });
    return found == kKept.end() ? nullptr : found;
}

// No control characters, which show nothing, no line ends, and nothing beyond Unicode.
bool IsText(std::uint32_t code_point) {
    return code_point >= 0x20 && (code_point < 0x7F || code_point >= 0xA0) &&
           (code_point < 0xD800 || code_point >= 0xE000) && code_point <= 0x10FFFF;
}

std::uint32_t NumberOf(std::string_view digits) {
    const bool is_hexadecimal = !digits.empty() && (digits[0] == 'x' || digits[0] == 'X');
    digits.remove_prefix(is_hexadecimal ? 1 : 0);
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::uint32_t base = is_hexadecimal ? 16 : 10;
    std::uint32_t number = 0;
    for (const char c : digits) {
        const std::size_t value =
            kDigits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
        if (value >= base || number > 0x10FFFF) {
            return 0;
        }
        number = number * base + static_cast<std::uint32_t>(value);
    }
    return number;
}

}  // namespace

std::string CharacterOf(std::string_view name) {
    if (name.substr(0, 1) == "#") {
        const std::uint32_t number = NumberOf(name.substr(1));
        return IsText(number) ? Utf8(number) : "";
    }
    const Kept* const kept = FindKept(name);
    return kept != nullptr ? std::string(kept->character) : check::CharacterNamed(name);
}

bool IsKept(std::string_view name) {
    return FindKept(name) != nullptr;
}

std::string Escaped(const std::string& character) {
    return character == "&" ? "&amp;" : character == "<" ? "&lt;" : character;
}

}  // namespace quill::fix
