// Character references, as other programs write them.
#ifndef TOOLS_FIX_REFERENCES_H_
#define TOOLS_FIX_REFERENCES_H_

#include <string>
#include <string_view>

namespace quill::fix {

// What "amp" or "#39" stands for; empty when that is not known, or is no character of a text.
std::string CharacterOf(std::string_view name);

// Whether the module knows the name itself.
bool IsKept(std::string_view name);

// The character as it may stand in a text.
std::string Escaped(const std::string& character);

}  // namespace quill::fix

#endif  // TOOLS_FIX_REFERENCES_H_
