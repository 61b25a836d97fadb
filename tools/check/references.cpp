#include "tools/check/references.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "tools/check/finding.h"

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

std::string Utf8(char32_t character) {
    const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
    if (character < 0x80) {
        return {byte(character)};
    }
    if (character < 0x800) {
        return {byte(0xC0 | character >> 6), byte(0x80 | (character & 0x3F))};
    }
    if (character < 0x10000) {
        return {byte(0xE0 | character >> 12), byte(0x80 | (character >> 6 & 0x3F)),
                byte(0x80 | (character & 0x3F))};
    }
    return {byte(0xF0 | character >> 18), byte(0x80 | (character >> 12 & 0x3F)),
            byte(0x80 | (character >> 6 & 0x3F)), byte(0x80 | (character & 0x3F))};
}

}  // namespace

std::string CharacterNamed(std::string_view name) {
    for (const Named& known : kNamed) {
        if (name == known.name) {
            return Utf8(known.character);
        }
    }
    return "";
}

std::size_t NumberedSize(std::string_view text) {
    if (text.substr(0, 2) != "&#") {
        return 0;
    }
    const bool is_hex = text.substr(2, 1) == "x" || text.substr(2, 1) == "X";
    const std::size_t begin = is_hex ? 3 : 2;
    const std::size_t end =
        std::min(text.find_first_not_of(is_hex ? "0123456789abcdefABCDEF" : "0123456789", begin),
                 text.size());
    return end <= begin ? 0 : end + (text.substr(end, 1) == ";" ? 1 : 0);
}

std::string WriteNumbered(std::string_view reference) {
    const bool is_hex = reference[2] == 'x' || reference[2] == 'X';
    const std::string digits(reference.substr(is_hex ? 3 : 2));
    const unsigned long value = std::strtoul(digits.c_str(), nullptr, is_hex ? 16 : 10);
    const bool is_character = value >= ' ' && value <= 0x10FFFF && (value & ~0x7FFul) != 0xD800;
    return is_character ? WriteCharacter(Utf8(static_cast<char32_t>(value))) : "remove it";
}

std::string WriteCharacter(const std::string& character) {
    static constexpr struct {
        const char* character;
        const char* reference;
    } kReferences[] = {{"&", "&amp;"},
                       {"<", "&lt;"},
                       {">", "&gt;"},
                       {"\xC2\xA0", "&nbsp;"},
                       {"\xE2\x80\x8E", "&lrm;"},
                       {"\xE2\x80\x8F", "&rlm;"}};
    for (const auto& known : kReferences) {
        if (character == known.character) {
            return "write " + std::string(known.reference);
        }
    }
    return "write " + Quoted(character) + " itself";
}

}  // namespace quill::check
