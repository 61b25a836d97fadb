// What all header lines have in common.
#pragma once

#include <string_view>

#include "base/errors.h"
#include "base/text.h"

namespace webvtt {

/// A header line without its line feed (one, if there is one) and without its keyword, of which
/// only the length counts: the parser chose the header by it.
/// @throws InvalidArgumentException pcLine is null
/// @throws std::out_of_range        "basic_string::at": the line is empty
inline std::string_view header_value(const char* pcLine, std::string_view keyword) {
    if (pcLine == nullptr) {
        throw InvalidArgumentException("Input pcLine is NULL", nullptr);
    }
    std::string_view line(pcLine);
    if (char_at(line, line.size() - 1) == '\n') {
        line.remove_suffix(1);
    }
    return line.substr(line.size() < keyword.size() ? line.size() : keyword.size());
}

}  // namespace webvtt
