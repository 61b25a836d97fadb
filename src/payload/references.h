// The character references that are known.
#pragma once

#include <string_view>

#include "base/webvtt_string.h"

namespace webvtt {

struct Reference {
    const WebvttString& name;      ///< with the "&", without the ";"
    std::string_view replacement;  ///< UTF-8
};

/// The reference of this name, or null. Names are told apart by case.
const Reference* find_reference(std::string_view name);

/// What the name of a reference is made of.
inline bool is_ascii_alphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace webvtt
