// Looking at texts byte by byte, as every subcommand does. Unlike the functions of <cctype> these
// take plain characters, know ASCII alone and heed no locale.
#ifndef TOOLS_CONSOLE_TEXT_H_
#define TOOLS_CONSOLE_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quill::console {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool BeginsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

constexpr char InSmallLetters(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string InSmallLetters(std::string text) {
    for (char& c : text) {
        c = InSmallLetters(c);
    }
    return text;
}

// Whether it begins with a prefix that is given in small letters, whatever the case of the text.
constexpr bool BeginsWithAnyCase(std::string_view text, std::string_view prefix) {
    for (std::size_t index = 0; index < prefix.size(); ++index) {
        if (index == text.size() || InSmallLetters(text[index]) != prefix[index]) {
            return false;
        }
    }
    return true;
}

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_TEXT_H_
