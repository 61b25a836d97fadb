// What reading a track costs at the very least: two line scans that the module is measured beside.
#pragma once

#include <cstddef>
#include <string_view>

namespace bench {

/// (a) Finds the lines, with memchr, and counts them.
std::size_t scan_lines(std::string_view text);

/// (b) Besides, makes a copy of every line on the heap and frees it.
std::size_t copy_lines(std::string_view text);

}  // namespace bench
