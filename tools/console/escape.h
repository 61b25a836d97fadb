// Makes bytes of unknown origin safe to show: nothing that a terminal would obey gets through.
#ifndef TOOLS_CONSOLE_ESCAPE_H_
#define TOOLS_CONSOLE_ESCAPE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quill::console {

enum class LineFeeds { kKeep, kEscape };

// The text with every control character and every byte that is not part of valid UTF-8 written
// as \xNN, byte by byte. Control characters are U+0000 to U+001F except the tab, and U+007F to
// U+009F; line feeds are as asked. A backslash stays as it is, so the result is for reading, not
// for reading back.
std::string Escape(std::string_view text, LineFeeds line_feeds);

// The byte as references to places have it: "%3A".
std::string PercentCode(char byte);

struct Character {
    char32_t code_point;
    std::size_t size;  // in bytes
    bool is_valid;     // else it is one byte that is no part of valid UTF-8
};

// The character that the text, which is not empty, begins with.
Character FirstCharacter(std::string_view text);

// The UTF-8 of a code point, which must be one of Unicode's characters.
std::string Utf8(char32_t code_point);

// The first byte that is no part of valid UTF-8; npos when there is none.
std::size_t FindInvalid(std::string_view text);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_ESCAPE_H_
