#include "tools/console/json.h"

namespace quill::console {

std::string JsonText(const Json& value, Letters letters) {
    constexpr int kOnOneLine = -1;
    return value.dump(kOnOneLine, ' ', letters == Letters::kAscii, Json::error_handler_t::replace);
}

std::string JsonLine(const Json& value) {
    return JsonText(value) + "\n";
}

Json ParseJson(std::string_view text) {
    constexpr bool kThrows = true;
    return Json::parse(text, nullptr, !kThrows);
}

}  // namespace quill::console
