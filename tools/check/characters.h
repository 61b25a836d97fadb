// Characters that cannot be told from others, or not be seen, in what an author looks at.
#ifndef TOOLS_CHECK_CHARACTERS_H_
#define TOOLS_CHECK_CHARACTERS_H_

#include <string>
#include <string_view>

namespace quill::check {

// A character that is taken for another one, or for nothing.
struct LookAlike {
    char32_t code_point;
    const char* name;   // "no-break space"
    const char* plain;  // what it is taken for: a space, a digit, a colon, or nothing
    bool is_invisible() const { return *plain == '\0' || *plain == ' '; }
};

// "U+00A0 (no-break space)"; without the name when that is not known.
std::string NameOf(char32_t code_point);

// What the character is taken for. Null when it is taken for nothing but itself.
const LookAlike* LookAlikeOf(char32_t code_point);

// The first character of the text that looks like another one; plain spaces do not. Null when
// there is none.
const LookAlike* FindLookAlike(std::string_view text);

// The text with what each look-alike is taken for in its place.
std::string Plain(std::string_view text);

// Whether the text has characters, and none of them can be seen.
bool LooksBlank(std::string_view text);

// What such a text holds: "U+0020 (space), 3 times, and U+0009 (tab)".
std::string NamesIn(std::string_view text);

// The text with each character that cannot be seen, but the space, as \uNNNN or \xNN, and with what
// a terminal would obey escaped.
std::string Visible(std::string_view text);

}  // namespace quill::check

#endif  // TOOLS_CHECK_CHARACTERS_H_
