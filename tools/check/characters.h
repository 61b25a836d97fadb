// Characters that cannot be told from others, or not be seen, in what an author looks at.
#ifndef TOOLS_CHECK_CHARACTERS_H_
#define TOOLS_CHECK_CHARACTERS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quill::check {

// A character that is taken for another one, or for nothing.
struct LookAlike {
    char32_t code_point;
    const char* name;   // "no-break space"
    const char* plain;  // what it is taken for: a space, a digit, an arrow, or nothing
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

// The same, which knows where everything stands in the text as it is.
class PlainText {
  public:
    explicit PlainText(std::string_view text);

    const std::string& text() const { return text_; }
    // Where what is shown at that place of text() begins; for its end, the end.
    std::size_t Begin(std::size_t index) const { return begins_[index]; }
    // Behind what is shown before that place.
    std::size_t End(std::size_t index) const { return index == 0 ? 0 : ends_[index - 1]; }

  private:
    std::string text_;
    std::vector<std::size_t> begins_;
    std::vector<std::size_t> ends_;
};

// Whether the text has characters, and none of them can be seen.
bool LooksBlank(std::string_view text);

// What such a text holds: "U+0020 (space), 3 times, and U+0009 (tab)".
std::string NamesIn(std::string_view text);

// The text with each character that cannot be seen, but the space, as \uNNNN or \xNN, and with what
// a terminal would obey escaped.
std::string Visible(std::string_view text);

}  // namespace quill::check

#endif  // TOOLS_CHECK_CHARACTERS_H_
