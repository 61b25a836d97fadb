#include "tools/check/characters.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>
#include <vector>

#include "tools/console/escape.h"

namespace quill::check {
namespace {

constexpr LookAlike kLookAlikes[] = {
    {0x0009, "tab", " "},
    {0x000B, "vertical tab", " "},
    {0x000C, "form feed", " "},
    {0x0020, "space", " "},
    {0x0085, "next line", " "},
    {0x00A0, "no-break space", " "},
    {0x00AD, "soft hyphen", ""},
    {0x061C, "Arabic letter mark", ""},
    {0x1680, "Ogham space mark", " "},
    {0x180E, "Mongolian vowel separator", ""},
    {0x2000, "en quad", " "},
    {0x2001, "em quad", " "},
    {0x2002, "en space", " "},
    {0x2003, "em space", " "},
    {0x2004, "three-per-em space", " "},
    {0x2005, "four-per-em space", " "},
    {0x2006, "six-per-em space", " "},
    {0x2007, "figure space", " "},
    {0x2008, "punctuation space", " "},
    {0x2009, "thin space", " "},
    {0x200A, "hair space", " "},
    {0x200B, "zero width space", ""},
    {0x200C, "zero width non-joiner", ""},
    {0x200D, "zero width joiner", ""},
    {0x200E, "left-to-right mark", ""},
    {0x200F, "right-to-left mark", ""},
    {0x2010, "hyphen", "-"},
    {0x2011, "non-breaking hyphen", "-"},
    {0x2012, "figure dash", "-"},
    {0x2013, "en dash", "-"},
    {0x2014, "em dash", "-"},
    {0x2015, "horizontal bar", "-"},
    {0x2028, "line separator", " "},
    {0x2029, "paragraph separator", " "},
    {0x202A, "left-to-right embedding", ""},
    {0x202B, "right-to-left embedding", ""},
    {0x202C, "pop directional formatting", ""},
    {0x202D, "left-to-right override", ""},
    {0x202E, "right-to-left override", ""},
    {0x202F, "narrow no-break space", " "},
    {0x203A, "single right-pointing angle quotation mark", ">"},
    {0x205F, "medium mathematical space", " "},
    {0x2060, "word joiner", ""},
    {0x2061, "function application", ""},
    {0x2062, "invisible times", ""},
    {0x2063, "invisible separator", ""},
    {0x2064, "invisible plus", ""},
    {0x2066, "left-to-right isolate", ""},
    {0x2067, "right-to-left isolate", ""},
    {0x2068, "first strong isolate", ""},
    {0x2069, "pop directional isolate", ""},
    {0x2192, "rightwards arrow", "-->"},
    {0x21D2, "rightwards double arrow", "-->"},
    {0x2212, "minus sign", "-"},
    {0x2236, "ratio", ":"},
    {0x2794, "heavy wide-headed rightwards arrow", "-->"},
    {0x279C, "heavy round-tipped rightwards arrow", "-->"},
    {0x27F6, "long rightwards arrow", "-->"},
    {0x2800, "blank Braille pattern", " "},
    {0x3000, "ideographic space", " "},
    {0x3164, "Hangul filler", " "},
    {0xFE0F, "variation selector-16", ""},
    {0xFEFF, "byte order mark", ""},
    {0xFF05, "fullwidth percent sign", "%"},
    {0xFF0C, "fullwidth comma", ","},
    {0xFF0D, "fullwidth hyphen-minus", "-"},
    {0xFF0E, "fullwidth full stop", "."},
    {0xFF10, "fullwidth digit zero", "0"},
    {0xFF11, "fullwidth digit one", "1"},
    {0xFF12, "fullwidth digit two", "2"},
    {0xFF13, "fullwidth digit three", "3"},
    {0xFF14, "fullwidth digit four", "4"},
    {0xFF15, "fullwidth digit five", "5"},
    {0xFF16, "fullwidth digit six", "6"},
    {0xFF17, "fullwidth digit seven", "7"},
    {0xFF18, "fullwidth digit eight", "8"},
    {0xFF19, "fullwidth digit nine", "9"},
    {0xFF1A, "fullwidth colon", ":"},
    {0xFF1D, "fullwidth equals sign", "="},
    {0xFF1E, "fullwidth greater-than sign", ">"},
};

// How many characters the text begins with that look like nothing else in any case.
std::size_t CountUsual(std::string_view text) {
    const auto* const found =
        std::find_if_not(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7F'; });
    return static_cast<std::size_t>(found - text.begin());
}

// Calls back with each character's bytes, or those of many that look like nothing else, and what
// it looks like, which is null for most.
template <typename Callback>
void ForEach(std::string_view text, Callback callback) {
    while (!text.empty()) {
        if (const std::size_t usual = CountUsual(text); usual > 0) {
            callback(text.substr(0, usual), nullptr);
            text.remove_prefix(usual);
            continue;
        }
        const console::Character character = console::FirstCharacter(text);
        callback(text.substr(0, character.size),
                 character.is_valid ? LookAlikeOf(character.code_point) : nullptr);
        text.remove_prefix(character.size);
    }
}

// Control characters, but for those that have names of their own above.
const LookAlike* ControlOf(char32_t code_point) {
    constexpr char32_t kEnd = 0xA0;
    static const std::vector<LookAlike> kControls = [] {
        std::vector<LookAlike> controls;
        for (char32_t one = 0; one < kEnd; ++one) {
            controls.push_back({one, "control character", ""});
        }
        return controls;
    }();
    const bool is_control =
        code_point > 0 && code_point < kEnd && (code_point < ' ' || code_point >= 0x7F);
    return is_control ? &kControls[code_point] : nullptr;
}

std::string Hex(const char* format, char32_t code_point) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, static_cast<unsigned>(code_point));
    return text.data();
}

}  // namespace

const LookAlike* LookAlikeOf(char32_t code_point) {
    const LookAlike* const end = std::end(kLookAlikes);
    const LookAlike* const found = std::lower_bound(
        std::begin(kLookAlikes), end, code_point,
        [](const LookAlike& known, char32_t wanted) { return known.code_point < wanted; });
    return found != end && found->code_point == code_point ? found : ControlOf(code_point);
}

std::string NameOf(char32_t code_point) {
    const LookAlike* const known = LookAlikeOf(code_point);
    return Hex("U+%04X", code_point) +
           (known != nullptr ? " (" + std::string(known->name) + ")" : "");
}

const LookAlike* FindLookAlike(std::string_view text) {
    const LookAlike* found = nullptr;
    ForEach(text, [&found](std::string_view, const LookAlike* known) {
        if (found == nullptr && known != nullptr && known->code_point != ' ') {
            found = known;
        }
    });
    return found;
}

std::string Plain(std::string_view text) {
    std::string plain;
    ForEach(text, [&plain](std::string_view bytes, const LookAlike* known) {
        plain += known != nullptr ? known->plain : bytes;
    });
    return plain;
}

PlainText::PlainText(std::string_view text) {
    begins_.reserve(text.size() + 1);
    ends_.reserve(text.size());
    std::size_t at = 0;
    ForEach(text, [&](std::string_view bytes, const LookAlike* known) {
        const std::string_view plain = known != nullptr ? known->plain : bytes;
        for (std::size_t index = 0; index < plain.size(); ++index) {
            begins_.push_back(known != nullptr ? at : at + index);
            ends_.push_back(known != nullptr ? at + bytes.size() : at + index + 1);
        }
        text_ += plain;
        at += bytes.size();
    });
    begins_.push_back(at);
}

bool LooksBlank(std::string_view text) {
    bool all = !text.empty();
    // Of most lines the first byte decides.
    if (all && static_cast<unsigned char>(text[0]) > ' ' &&
        static_cast<unsigned char>(text[0]) < 0x80) {
        return false;
    }
    ForEach(text, [&all](std::string_view, const LookAlike* known) {
        all = all && known != nullptr && known->is_invisible();
    });
    return all;
}

std::string NamesIn(std::string_view text) {
    std::vector<std::pair<const LookAlike*, int>> counts;
    ForEach(text, [&counts](std::string_view, const LookAlike* known) {
        const auto counted = std::find_if(counts.begin(), counts.end(), [known](const auto& count) {
            return count.first == known;
        });
        if (counted != counts.end()) {
            ++counted->second;
        } else if (known != nullptr) {
            counts.emplace_back(known, 1);
        }
    });
    std::string names;
    for (const auto& [known, count] : counts) {
        names += (names.empty() ? "" : " and ") + NameOf(known->code_point) +
                 (count > 1 ? ", " + std::to_string(count) + " times" : "");
    }
    return names;
}

std::string Visible(std::string_view text) {
    std::string visible;
    ForEach(text, [&visible](std::string_view bytes, const LookAlike* known) {
        if (bytes == "\t") {
            visible += "\\x09";
        } else if (known == nullptr || !known->is_invisible() || known->code_point < 0xA0) {
            visible += console::Escape(bytes, console::LineFeeds::kEscape);
        } else {
            visible += Hex("\\u%04x", known->code_point);
        }
    });
    return visible;
}

}  // namespace quill::check
