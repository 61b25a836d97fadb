// Guesses which word was meant by one that is not known.
#ifndef TOOLS_CONSOLE_SUGGESTION_H_
#define TOOLS_CONSOLE_SUGGESTION_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quill::console {

// How many letters have to be changed, added, taken out or swapped with the next one.
std::size_t Distance(std::string_view a, std::string_view b);

// "; did you mean "cues"?" when one of the known words is close to the word: the closest, the first
// one of those. Otherwise empty.
std::string Suggest(std::string_view word, const std::vector<std::string>& known);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_SUGGESTION_H_
