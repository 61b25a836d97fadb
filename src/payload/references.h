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

/// The reference that a text begins with, ";" included, or null.
const Reference* find_reference_in_front(std::string_view text);

}  // namespace webvtt
