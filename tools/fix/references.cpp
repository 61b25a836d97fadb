#include "tools/fix/references.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "tools/fix/characters.h"

namespace quill::fix {
namespace {

struct Reference {
    std::string_view name;
    std::uint32_t code_point;
};

// Of the many names, those that subtitles have.
constexpr Reference kReferences[] = {
    {"AMP", '&'},       {"GT", '>'},        {"LT", '<'},       {"QUOT", '"'},     {"Agrave", 0xC0},
    {"Auml", 0xC4},     {"Ccedil", 0xC7},   {"Eacute", 0xC9},  {"Ouml", 0xD6},    {"Uuml", 0xDC},
    {"aacute", 0xE1},   {"acirc", 0xE2},    {"agrave", 0xE0},  {"amp", '&'},      {"apos", '\''},
    {"aring", 0xE5},    {"auml", 0xE4},     {"bull", 0x2022},  {"ccedil", 0xE7},  {"cent", 0xA2},
    {"copy", 0xA9},     {"deg", 0xB0},      {"eacute", 0xE9},  {"ecirc", 0xEA},   {"egrave", 0xE8},
    {"emsp", 0x2003},   {"ensp", 0x2002},   {"euro", 0x20AC},  {"frac12", 0xBD},  {"gt", '>'},
    {"hellip", 0x2026}, {"iacute", 0xED},   {"iexcl", 0xA1},   {"iquest", 0xBF},  {"laquo", 0xAB},
    {"ldquo", 0x201C},  {"lrm", 0x200E},    {"lsquo", 0x2018}, {"lt", '<'},       {"mdash", 0x2014},
    {"middot", 0xB7},   {"nbsp", 0xA0},     {"ndash", 0x2013}, {"ntilde", 0xF1},  {"oacute", 0xF3},
    {"ocirc", 0xF4},    {"ouml", 0xF6},     {"pound", 0xA3},   {"quot", '"'},     {"raquo", 0xBB},
    {"rdquo", 0x201D},  {"reg", 0xAE},      {"rlm", 0x200F},   {"rsquo", 0x2019}, {"sect", 0xA7},
    {"szlig", 0xDF},    {"thinsp", 0x2009}, {"times", 0xD7},   {"trade", 0x2122}, {"uacute", 0xFA},
    {"uuml", 0xFC},
};

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
    const auto* const found =
        std::find_if(std::begin(kReferences), std::end(kReferences),
                     [name](const Reference& reference) { return reference.name == name; });
    return found == std::end(kReferences) ? "" : Utf8(found->code_point);
}

bool IsKept(std::string_view name) {
    static constexpr std::array<std::string_view, 6> kNames = {"amp", "lt",  "gt",
                                                               "lrm", "rlm", "nbsp"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

std::string Escaped(const std::string& character) {
    return character == "&" ? "&amp;" : character == "<" ? "&lt;" : character;
}

}  // namespace quill::fix
