// Settings and header lines read from any text, and what must hold of the objects afterwards.
#pragma once

#include <string_view>

#include "base/webvtt_string.h"

namespace fuzz {

/// The text as a timing line, and as the settings of a valid one.
void check_timing_line(std::string_view text);
/// The text as one cue setting.
void check_setting(std::string_view text);
/// The text as a "Region:" line, with and without the keyword, and as one of its items.
void check_region(std::string_view text);
/// The text as an "X-TIMESTAMP-MAP" line, with and without the keyword, and as its items' values.
void check_map(std::string_view text);

}  // namespace fuzz
