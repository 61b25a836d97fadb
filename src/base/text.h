// Small operations on views of text. None of them copies or allocates.
#pragma once

#include <cstring>
#include <stdexcept>
#include <string_view>

namespace webvtt {

/// A text cut in two at the first delimiter.
struct Split {
    std::string_view head;  ///< before the delimiter; the whole text when there is none
    std::string_view tail;  ///< behind the delimiter; empty when there is none
    bool found;             ///< whether the delimiter occurs
};

inline Split split_first(std::string_view text, std::string_view delimiter) {
    const std::size_t at = text.find(delimiter);
    if (at == std::string_view::npos) {
        return {text, {}, false};
    }
    return {text.substr(0, at), text.substr(at + delimiter.size()), true};
}

/// The same for a single character. A plain loop: the texts, fields and items, are short.
inline Split split_first(std::string_view text, char delimiter) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == delimiter) {
            return {text.substr(0, at), text.substr(at + 1), true};
        }
    }
    return {text, {}, false};
}

/// A text cut in two at the first line feed.
inline Split split_line(std::string_view text) {
    const std::size_t at = text.find('\n');
    if (at == std::string_view::npos) {
        return {text, {}, false};
    }
    return {text.substr(0, at), text.substr(at + 1), true};
}

/// Whether two short texts are the same. A plain loop, four letters at a time: words that differ do
/// so early, and those that do not are shorter than what a call of memcmp takes.
inline bool same_word(std::string_view word, std::string_view other) {
    if (word.size() != other.size()) {
        return false;
    }
    const char* c = word.data();
    const char* d = other.data();
    const char* const end = c + word.size();
    for (; end - c >= 4; c += 4, d += 4) {
        if (std::memcmp(c, d, 4) != 0) {  // one comparison, not a call
            return false;
        }
    }
    for (; c != end; ++c, ++d) {
        if (*c != *d) {
            return false;
        }
    }
    return true;
}

inline bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

inline bool starts_with(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Without leading and trailing spaces. Only the space (0x20) is removed: a tab next to a time or
/// a keyword stays and makes it invalid.
inline std::string_view trim_spaces(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The character at an index that a track may have put out of range. The error leaves the module,
/// and hosts tell errors apart by exactly this text, so it is not the library's longer wording.
inline char char_at(std::string_view text, std::size_t index) {
    if (index >= text.size()) {
        throw std::out_of_range("basic_string::at");
    }
    return text[index];
}

/// The text from an index on, likewise.
inline std::string_view text_from(std::string_view text, std::size_t index) {
    if (index > text.size()) {
        throw std::out_of_range("basic_string::substr");
    }
    return text.substr(index);
}

}  // namespace webvtt
