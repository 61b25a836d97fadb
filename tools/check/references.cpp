#include "tools/check/references.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "tools/check/finding.h"
#include "tools/console/escape.h"

namespace quill::check {
namespace {

struct Named {
    const char* name;
    char32_t character;
};

constexpr Named kNamed[] = {
    {"quot", 0x0022},   {"apos", 0x0027},   {"copy", 0x00A9},   {"reg", 0x00AE},
    {"trade", 0x2122},  {"hellip", 0x2026}, {"mdash", 0x2014},  {"ndash", 0x2013},
    {"lsquo", 0x2018},  {"rsquo", 0x2019},  {"sbquo", 0x201A},  {"ldquo", 0x201C},
    {"rdquo", 0x201D},  {"bdquo", 0x201E},  {"laquo", 0x00AB},  {"raquo", 0x00BB},
    {"lsaquo", 0x2039}, {"rsaquo", 0x203A}, {"bull", 0x2022},   {"middot", 0x00B7},
    {"times", 0x00D7},  {"divide", 0x00F7}, {"deg", 0x00B0},    {"euro", 0x20AC},
    {"pound", 0x00A3},  {"cent", 0x00A2},   {"yen", 0x00A5},    {"sect", 0x00A7},
    {"para", 0x00B6},   {"iexcl", 0x00A1},  {"iquest", 0x00BF}, {"frac12", 0x00BD},
    {"frac14", 0x00BC}, {"frac34", 0x00BE}, {"sup2", 0x00B2},   {"sup3", 0x00B3},
    {"ordf", 0x00AA},   {"ordm", 0x00BA},   {"Aacute", 0x00C1}, {"aacute", 0x00E1},
    {"Agrave", 0x00C0}, {"agrave", 0x00E0}, {"Acirc", 0x00C2},  {"acirc", 0x00E2},
    {"Atilde", 0x00C3}, {"atilde", 0x00E3}, {"Auml", 0x00C4},   {"auml", 0x00E4},
    {"Aring", 0x00C5},  {"aring", 0x00E5},  {"AElig", 0x00C6},  {"aelig", 0x00E6},
    {"Ccedil", 0x00C7}, {"ccedil", 0x00E7}, {"Eacute", 0x00C9}, {"eacute", 0x00E9},
    {"Egrave", 0x00C8}, {"egrave", 0x00E8}, {"Ecirc", 0x00CA},  {"ecirc", 0x00EA},
    {"Euml", 0x00CB},   {"euml", 0x00EB},   {"Iacute", 0x00CD}, {"iacute", 0x00ED},
    {"Igrave", 0x00CC}, {"igrave", 0x00EC}, {"Icirc", 0x00CE},  {"icirc", 0x00EE},
    {"Iuml", 0x00CF},   {"iuml", 0x00EF},   {"Ntilde", 0x00D1}, {"ntilde", 0x00F1},
    {"Oacute", 0x00D3}, {"oacute", 0x00F3}, {"Ograve", 0x00D2}, {"ograve", 0x00F2},
    {"Ocirc", 0x00D4},  {"ocirc", 0x00F4},  {"Otilde", 0x00D5}, {"otilde", 0x00F5},
    {"Ouml", 0x00D6},   {"ouml", 0x00F6},   {"Oslash", 0x00D8}, {"oslash", 0x00F8},
    {"OElig", 0x0152},  {"oelig", 0x0153},  {"Scaron", 0x0160}, {"scaron", 0x0161},
    {"szlig", 0x00DF},  {"Uacute", 0x00DA}, {"uacute", 0x00FA}, {"Ugrave", 0x00D9},
    {"ugrave", 0x00F9}, {"Ucirc", 0x00DB},  {"ucirc", 0x00FB},  {"Uuml", 0x00DC},
    {"uuml", 0x00FC},   {"Yacute", 0x00DD}, {"yacute", 0x00FD}, {"yuml", 0x00FF},
    {"zwj", 0x200D},    {"zwnj", 0x200C},   {"shy", 0x00AD},    {"ensp", 0x2002},
    {"emsp", 0x2003},   {"thinsp", 0x2009}, {"dagger", 0x2020}, {"Dagger", 0x2021},
    {"permil", 0x2030}, {"sung", 0x266A},   {"larr", 0x2190},   {"rarr", 0x2192},
    {"plusmn", 0x00B1}, {"micro", 0x00B5},  {"not", 0x00AC},
};

// Those that the module knows.
struct Own {
    std::string_view name;
    std::string_view character;
};

constexpr Own kOwn[] = {
    {"amp", "&"},           {"lt", "<"}, {"gt", ">"}, {"nbsp", "\xC2\xA0"}, {"lrm", "\xE2\x80\x8E"},
    {"rlm", "\xE2\x80\x8F"}};

const Own* FindOwn(std::string_view name) {
    const auto* const found = std::find_if(std::begin(kOwn), std::end(kOwn),
                                           [name](const Own& own) { return own.name == name; });
    return found == std::end(kOwn) ? nullptr : found;
}

constexpr std::string_view kDecimal = "0123456789";
constexpr std::string_view kHexadecimal = "0123456789abcdefABCDEF";

bool IsHexadecimal(std::string_view digits) {
    return digits.substr(0, 1) == "x" || digits.substr(0, 1) == "X";
}

// The digits in decimal, or "x" and hexadecimal ones. Empty for control characters, which show
// nothing, for what is no character of Unicode, and for other digits.
std::string CharacterNumbered(std::string_view digits) {
    const bool is_hex = IsHexadecimal(digits);
    const std::string number(digits.substr(is_hex ? 1 : 0));
    if (number.find_first_not_of(is_hex ? kHexadecimal : kDecimal) != std::string::npos) {
        return "";
    }
    const unsigned long value = std::strtoul(number.c_str(), nullptr, is_hex ? 16 : 10);
    const bool is_character = value >= 0x20 && (value < 0x7F || value >= 0xA0) &&
                              (value < 0xD800 || value >= 0xE000) && value <= 0x10FFFF;
    return is_character ? console::Utf8(static_cast<char32_t>(value)) : "";
}

}  // namespace

std::string CharacterNamed(std::string_view name) {
    for (const Named& known : kNamed) {
        if (name == known.name) {
            return console::Utf8(known.character);
        }
    }
    return "";
}

bool IsOwn(std::string_view name) {
    return FindOwn(name) != nullptr;
}

std::string CharacterOf(std::string_view name) {
    if (name.substr(0, 1) == "#") {
        return CharacterNumbered(name.substr(1));
    }
    const Own* const own = FindOwn(name);
    return own != nullptr ? std::string(own->character) : CharacterNamed(name);
}

std::size_t NumberedSize(std::string_view text) {
    if (text.substr(0, 2) != "&#") {
        return 0;
    }
    const bool is_hex = IsHexadecimal(text.substr(2));
    const std::size_t begin = is_hex ? 3 : 2;
    const std::size_t end =
        std::min(text.find_first_not_of(is_hex ? kHexadecimal : kDecimal, begin), text.size());
    return end <= begin ? 0 : end + (text.substr(end, 1) == ";" ? 1 : 0);
}

std::string WriteNumbered(std::string_view reference) {
    const std::size_t end = reference.back() == ';' ? reference.size() - 1 : reference.size();
    const std::string character = CharacterNumbered(reference.substr(2, end - 2));
    return character.empty() ? "remove it" : WriteCharacter(character);
}

std::string InText(const std::string& character) {
    for (const Own& own : kOwn) {
        if (character == own.character) {
            return "&" + std::string(own.name) + ";";
        }
    }
    return character;
}

std::string WriteCharacter(const std::string& character) {
    const std::string text = InText(character);
    return text != character ? "write " + text : "write " + Quoted(character) + " itself";
}

}  // namespace quill::check
