#include "guard/hidden_text.h"

#include <algorithm>
#include <iterator>

namespace guard {
namespace {

constexpr std::string_view kReferences[] = {"amp", "lt", "gt", "lrm", "rlm", "nbsp"};
constexpr std::string_view kTags[] = {"c", "i", "b", "u", "ruby", "rt", "v", "lang"};
// What stands behind a header's keyword stays too.
constexpr std::string_view kHeaders[] = {"Region:", "X-TIMESTAMP-MAP"};
constexpr std::string_view kKeywords[] = {kHeaders[0], kHeaders[1], "NOTE", "STYLE", "REGION"};
constexpr std::string_view kSettings[] = {
    "region:", "vertical:", "line:", "size:", "position:", "align:"};
// The last two are accepted as well: they are what the module makes of a byte order mark.
constexpr std::string_view kSignatures[] = {
    "WEBVTT",
    "\xEF\xBB\xBFWEBVTT \xEF\xBB\xBFWEBVTT\tWEBVTT",
    "\xEF\xBB\xBFWEBVTT\tWEBVTT",
};

template <std::uint8_t kCount>
constexpr Words words(const std::string_view (&list)[kCount]) {
    return {list, kCount};
}

bool is_digit(char byte) {
    return byte >= '0' && byte <= '9';
}

bool is_letter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool is_ascii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

}  // namespace

bool is_letter_or_digit(char byte) {
    return is_digit(byte) || is_letter(byte);
}

char hidden_byte(char byte) {
    const unsigned code = static_cast<unsigned char>(byte);
    if (is_digit(byte)) {
        return '0';
    }
    if (is_letter(byte)) {
        return byte >= 'a' ? 'x' : 'X';
    }
    if (code < 0x80) {
        return byte;
    }
    // U+00A0, U+200E and U+200F; and the same bytes in other characters, which tell little.
    for (const unsigned kept : {0xC2U, 0xA0U, 0xE2U, 0x80U, 0x8EU, 0x8FU}) {
        if (code == kept) {
            return byte;
        }
    }
    // What comes of the others is no letter, and as valid UTF-8 as it was.
    const unsigned hidden = code < 0xC0   ? 0xA0U
                            : code < 0xC2 ? code
                            : code < 0xE0 ? 0xCBU
                            : code < 0xF0 ? 0xE2U
                            : code < 0xF5 ? 0xF1U
                                          : code;
    return static_cast<char>(hidden);
}

bool WordPrefix::add(char byte) {
    for (unsigned number = 0; number < m_words.count; ++number) {
        const std::string_view word = m_words.begin[number];
        if (m_size >= word.size() || word[m_size] != byte) {
            m_possible = static_cast<std::uint16_t>(m_possible & ~(1U << number));
        }
    }
    if (m_possible != 0) {
        ++m_size;
    }
    return m_possible != 0;
}

std::string_view WordPrefix::word() const {
    for (unsigned number = 0; number < m_words.count; ++number) {
        if ((m_possible & (1U << number)) != 0 && m_words.begin[number].size() == m_size) {
            return m_words.begin[number];
        }
    }
    return {};
}

WordPrefix TextHider::references() {
    return WordPrefix(words(kReferences));
}

char TextHider::hide(char byte) {
    if (byte == '&') {
        m_is_in_name = true;
        m_name = references();
        return byte;
    }
    m_is_in_name = m_is_in_name && is_letter_or_digit(byte);
    return m_is_in_name && m_name.add(byte) ? byte : hidden_byte(byte);
}

WordPrefix TagNameHider::tags() {
    return WordPrefix(words(kTags));
}

char TagNameHider::hide(char byte) {
    return m_name.add(byte) ? byte : hidden_byte(byte);
}

char TimeHider::hide(char byte) {
    m_is_hiding = m_is_hiding || is_letter(byte) || !is_ascii(byte);
    return m_is_hiding ? hidden_byte(byte) : byte;
}

WordPrefix SettingsHider::names() {
    return WordPrefix(words(kSettings));
}

char SettingsHider::hide(char byte) {
    if (byte == ' ') {
        *this = SettingsHider();
        return byte;
    }
    const bool stays = m_keeps_value || m_name.add(byte);
    m_keeps_value = m_keeps_value || m_name.is_word();
    return stays ? byte : hidden_byte(byte);
}

WordPrefix LineHider::keywords() {
    return WordPrefix(words(kKeywords));
}

char LineHider::hide(char byte) {
    const bool was_behind_arrow = m_has_arrow;
    find_arrow(byte);
    if (m_is_header) {
        return byte;
    }
    return was_behind_arrow && may_begin_with_time() ? hide_behind_arrow(byte) : hide_start(byte);
}

char LineHider::hide_start(char byte) {
    if (m_is_in_keyword && byte == ' ' && m_keyword.size() == 0) {
        return byte;
    }
    if (m_is_in_keyword && m_keyword.add(byte)) {
        const std::string_view word = m_keyword.word();
        m_is_header =
            std::find(std::begin(kHeaders), std::end(kHeaders), word) != std::end(kHeaders);
        return byte;
    }
    m_is_in_keyword = false;
    m_is_behind_keyword = m_keyword.size() != 0;
    return m_is_behind_keyword ? hidden_byte(byte) : m_start.hide(byte);
}

char LineHider::hide_behind_arrow(char byte) {
    if (m_is_in_settings) {
        return m_settings.hide(byte);
    }
    m_is_in_settings = m_has_end && byte == ' ';
    m_has_end = m_has_end || byte != ' ';
    return m_end.hide(byte);
}

void LineHider::find_arrow(char byte) {
    m_has_arrow = m_has_arrow || (byte == '>' && m_dashes == 2);
    m_dashes = byte == '-' ? std::min(m_dashes + 1, 2U) : 0;
}

WordPrefix FirstLineHider::signatures() {
    return WordPrefix(words(kSignatures));
}

char FirstLineHider::hide(char byte) {
    return m_signature.add(byte) ? byte : hidden_byte(byte);
}

}  // namespace guard
