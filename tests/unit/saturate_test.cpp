// Conversions of doubles to 32-bit integers, defined for every double.
#include "base/saturate.h"
#include "usual_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace webvtt {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kSignedMax = 2147483647;
constexpr std::int32_t kSignedMin = -kSignedMax - 1;
constexpr std::uint32_t kUnsignedMax = 4294967295u;

TEST(Saturate, ToSigned) {
    const struct {
        double value;
        std::int32_t expected;
    } cases[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.999, 0},
        {-0.999, 0},
        {1.5, 1},
        {-1.5, -1},
        {100.0, 100},
        {2147483646.9, 2147483646},
        {2147483647.0, kSignedMax},
        {2147483647.5, kSignedMax},
        {2147483648.0, kSignedMax},
        {1e300, kSignedMax},
        {-2147483647.9, -2147483647},
        {-2147483648.0, kSignedMin},
        {-2147483648.5, kSignedMin},
        {-2147483649.0, kSignedMin},
        {-1e300, kSignedMin},
        {kInfinity, kSignedMax},
        {-kInfinity, kSignedMin},
        {kNan, 0},
        {-kNan, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(saturating_cast<std::int32_t>(c.value), c.expected);
    }
}

TEST(Saturate, ToUnsigned) {
    const struct {
        double value;
        std::uint32_t expected;
    } cases[] = {
        {0.0, 0},
        {-0.0, 0},
        {-0.5, 0},
        {-1.0, 0},
        {-1e300, 0},
        {0.999, 0},
        {30.7, 30},
        {255.9, 255},
        {2147483648.0, 2147483648u},
        {4294967294.9, 4294967294u},
        {4294967295.0, kUnsignedMax},
        {4294967295.5, kUnsignedMax},
        {4294967296.0, kUnsignedMax},
        {kInfinity, kUnsignedMax},
        {-kInfinity, 0},
        {kNan, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(saturating_cast<std::uint32_t>(c.value), c.expected);
    }
}

}  // namespace
}  // namespace webvtt
