// Conversions of a double to an integer that are defined for every double.
#pragma once

#include <cstdint>
#include <limits>

#include "base/target.h"

namespace webvtt {

/// Toward zero; the nearest Integer when out of range, 0 for NaN.
template <typename Integer>
Integer saturating_cast(double value) {
    // Both limits of a 32-bit integer are exact as doubles.
    static_assert(sizeof(Integer) == 4, "written for 32-bit integers");
    constexpr double lowest = std::numeric_limits<Integer>::min();
    constexpr double highest = std::numeric_limits<Integer>::max();
    if (value >= 0.0 && value < std::numeric_limits<std::int32_t>::max()) {
        // Nearly every value; the way through a signed integer is one instruction on every target.
        return static_cast<Integer>(static_cast<std::int32_t>(value));
    }
    if (value >= highest) {
        return std::numeric_limits<Integer>::max();
    }
    if (value <= lowest) {
        return std::numeric_limits<Integer>::min();
    }
    // NaN fails every comparison.
    return value == value ? static_cast<Integer>(value) : 0;
}

}  // namespace webvtt
