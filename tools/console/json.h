// JSON as quill prints it. Its library takes long to compile: what writes and reads it is compiled
// once.
#ifndef TOOLS_CONSOLE_JSON_H_
#define TOOLS_CONSOLE_JSON_H_

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace quill::console {

// Keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

enum class Letters { kAscii, kAll };

// Without spaces and line ends. Bytes that are not UTF-8 become U+FFFD; unless all letters may be
// used, those beyond ASCII become escapes.
std::string JsonText(const Json& value, Letters letters = Letters::kAscii);

// The text as a line: JsonText and its end.
std::string JsonLine(const Json& value);

// What JsonText made into text; a discarded value when text is no JSON.
Json ParseJson(std::string_view text);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_JSON_H_
