// The character references of pages, of which tracks know six.
#ifndef TOOLS_CHECK_REFERENCES_H_
#define TOOLS_CHECK_REFERENCES_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace quill::check {

// The character in UTF-8; empty for a name that is not one of the usual ones, or that the module
// knows. Without "&" and ";".
std::string CharacterNamed(std::string_view name);

// Whether the module knows the name.
bool IsOwn(std::string_view name);

// What "amp", "copy", "#39" or "#x27" stands for; empty when that is not known, or is no character
// of a text.
std::string CharacterOf(std::string_view name);

// The size of the reference by number that the text begins with, "&#39;" or "&#x27", with the
// semicolon if there is one; 0 when it begins with none.
std::size_t NumberedSize(std::string_view text);

// What to write for such a reference: write "..." itself, or write &nbsp;.
std::string WriteNumbered(std::string_view reference);

// The character as it stands in a text: itself, or the reference of tracks for one that is not to
// be written.
std::string InText(const std::string& character);

// write "..." itself, or the reference of tracks for a character that is not to be written.
std::string WriteCharacter(const std::string& character);

}  // namespace quill::check

#endif  // TOOLS_CHECK_REFERENCES_H_
