// Takes printing out of a measurement.
//
// Linking quiet_printing.cpp replaces the C library's printing functions, also for a module that
// is loaded. They print as ever until they are told to be quiet.
#pragma once

#include <cstddef>

namespace bench {

void set_quiet_printing(bool quiet);

/// How many calls were dropped so far.
std::size_t dropped_prints();

}  // namespace bench
