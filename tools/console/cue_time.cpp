#include "tools/console/cue_time.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace quill::console {
namespace {

// Keeps the milliseconds inside 64 bits. Thirty million years: no track that the module reads
// gets near it.
constexpr double kLongest = 1e15;

}  // namespace

std::string FormatTime(double seconds, char decimal_mark) {
    if (std::isnan(seconds)) {
        return "nan";
    }
    if (std::isinf(seconds)) {
        return seconds < 0 ? "-inf" : "inf";
    }
    // The total is rounded once, so that 59.9996 s becomes a minute and never "60.000".
    const std::int64_t total = std::llround(std::clamp(seconds, -kLongest, kLongest) * 1000);
    const std::int64_t milliseconds = std::abs(total);
    char text[64];
    std::snprintf(text, sizeof text, "%s%02lld:%02d:%02d%c%03d", total < 0 ? "-" : "",
                  static_cast<long long>(milliseconds / 3600000),
                  static_cast<int>(milliseconds / 60000 % 60),
                  static_cast<int>(milliseconds / 1000 % 60), decimal_mark,
                  static_cast<int>(milliseconds % 1000));
    return text;
}

}  // namespace quill::console
