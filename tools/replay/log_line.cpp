#include "tools/replay/log_line.h"

#include <limits>
#include <utility>

#include "support/session_log.h"
#include "tools/console/failure.h"

namespace quill::replay {
namespace {

// Twice of what a line of the format has; deeper ones would take memory and no log needs them.
constexpr int kDeepest = 8;

[[noreturn]] void FailToRead(const std::string& where, const std::string& what) {
    throw console::Failure(console::kExitUsage, where + what);
}

// Looked at beforehand: a parser that is asked at each value takes time by the square of a list's
// length.
bool IsNestedTooDeeply(std::string_view line) {
    int depth = 0;
    bool in_text = false;
    for (std::size_t i = 0; i < line.size() && depth <= kDeepest; ++i) {
        const char byte = line[i];
        if (byte == '"') {
            in_text = !in_text;
        } else if (in_text) {
            i += byte == '\\' ? 1 : 0;
        } else if (byte == '[' || byte == '{') {
            ++depth;
        } else if (byte == ']' || byte == '}') {
            --depth;
        }
    }
    return depth > kDeepest;
}

}  // namespace

void Fields::Fail(const std::string& what) const {
    FailToRead(where_, what);
}

void Fields::Refuse(const char* name, const std::string& what) const {
    Fail("\"" + std::string(name) + "\" must be " + what);
}

const Json& Fields::At(const char* name) const {
    const auto found = object_.find(name);
    if (found == object_.end()) {
        Fail("there is no \"" + std::string(name) + "\"");
    }
    return *found;
}

std::uint64_t Fields::Number(const char* name, std::uint64_t most) const {
    const Json& value = At(name);
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > most) {
        Refuse(name, "a whole number up to " + std::to_string(most));
    }
    return value.get<std::uint64_t>();
}

std::int32_t Fields::Signed(const char* name) const {
    using Limits = std::numeric_limits<std::int32_t>;
    const Json& value = At(name);
    if (!value.is_number_integer() || value.get<std::int64_t>() < Limits::min() ||
        value.get<std::int64_t>() > Limits::max()) {
        Refuse(name, "a whole number of 32 bits");
    }
    return value.get<std::int32_t>();
}

double Fields::Seconds(const char* name) const {
    const Json& value = At(name);
    if (!value.is_number()) {
        Refuse(name, "a number");
    }
    return value.get<double>();
}

bool Fields::FlagOr(const char* name, bool otherwise) const {
    if (!Has(name)) {
        return otherwise;
    }
    const Json& value = At(name);
    if (!value.is_boolean()) {
        Refuse(name, "true or false");
    }
    return value.get<bool>();
}

std::string Fields::Text(const char* name) const {
    const Json& value = At(name);
    if (!value.is_string()) {
        Refuse(name, "a text");
    }
    return value.get<std::string>();
}

std::string Fields::Bytes(const char* name) const {
    const std::optional<std::string> bytes = support::session_log::bytes_of(Text(name));
    if (!bytes) {
        Refuse(name, "a byte string: it has a character beyond U+00FF");
    }
    return *bytes;
}

Fields Fields::ObjectOf(const Json& value) const {
    if (!value.is_object()) {
        Fail("there is something else where an object must be");
    }
    return {where_, value};
}

const Json& Fields::List(const char* name) const {
    const Json& value = At(name);
    if (!value.is_array()) {
        Refuse(name, "a list");
    }
    return value;
}

std::optional<Json> ParseLine(const std::string& where, std::string_view line) {
    if (IsNestedTooDeeply(line)) {
        FailToRead(where, "this is nested too deeply for a session log");
    }
    constexpr bool kThrows = false;
    Json value = Json::parse(line, nullptr, kThrows);
    return value.is_object() ? std::optional(std::move(value)) : std::nullopt;
}

}  // namespace quill::replay
