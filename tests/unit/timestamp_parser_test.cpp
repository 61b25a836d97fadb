// Times.
#include <gtest/gtest.h>

#include <string>

#include "base/webvtt_string.h"
#include "support/stdout_capture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

ReadNumber get_timestamp(const std::string& text) {
    return number_read_by([&](double& out) { return WebvttString(text).get_timestamp(out); });
}

// The whole part and the seconds are added as doubles, seconds last.
TEST(GetTimestamp, AcceptsOptionalHoursMinutesAndSixCharactersOfSeconds) {
    const struct {
        std::string text;
        double expected;
    } cases[] = {
        {"00:01.000", 1.0},
        {"01:02:03.004", 3720 + (4 / 1000.0 + 3)},
        {"1:02:03.004", 3720 + (4 / 1000.0 + 3)},
        {"100:00:00.000", 360000.0},
        {"59:59.999", 3540 + ((9 / 10.0 + 9 / 100.0 + 9 / 1000.0) + 59)},
        {"12::34.567", 720 + ((5 / 10.0 + 6 / 100.0 + 7 / 1000.0) + 34)},
        {"00:5.2500", 2 / 10.0 + 5 / 100.0 + 5},
        {"00:.50000", 0.5},
        {"00:000005", 5.0},
        {"00:059.50", 59.5},
        {"0000059:00.000", 3540.0},
        {"7:00:00.000", 25200.0},
        {"000000000000001:00:00.000", 3600.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = get_timestamp(c.text);
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(parsed.out, c.expected);
        EXPECT_EQ(parsed.output, "");
    }
}

TEST(GetTimestamp, WrapsIn32BitsOfWholeSeconds) {
    const struct {
        std::string text;
        double expected;
    } cases[] = {
        {"4294967296:00:00.000", 0.0},  // hours wrap as they are read
        {"4294967355:00.000", 3540.0},  // so do minutes: 59 are left
        {"1193047:00:00.000", 1904.0},  // 4294969200 seconds
        {"1193046:28:15.000", 4294967295.0},
        {"1193046:28:16.500", 4294967296.5},  // the seconds are added behind the wrap
        {"596523:15:00.000", 2147483700.0},   // read as unsigned
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = get_timestamp(c.text);
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(parsed.out, c.expected);
    }
}

TEST(GetTimestamp, RefusesWithoutTouchingOut) {
    const std::string texts[] = {
        "",
        "0:00.000",  // eight characters
        ":00.000",
        "00:00.0000",  // no colon at the seventh place from the end
        "000000000",
        "00:01.000 ",
        "00:00:00:00.000",  // too many fields
        "1:2:3:00.000",
        "12:::34.567",
        "1::0:00.000",  // minutes ":0"
        "00:7:00.000",  // minutes behind hours have two digits
        "00:007:00.000",
        "60:00.000",  // minutes below 60
        "4294967356:00.000",
        "01:60:00.000",
        ":00:00.000",  // no hours before the colon
        ":::00.000",
        "ab:01.000",
        "-1:01.000",
        "+1:01.000",
        " 00:01.000",
        "\t00:01.000",
        "00:0a:01.000",
        "0a:00:01.000",
        "00: 1:01.000",
        "\xB2\xB2:01.000",
    };
    for (const std::string& text : texts) {
        SCOPED_TRACE(testing::PrintToString(text));
        const ReadNumber parsed = get_timestamp(text);
        EXPECT_FALSE(parsed.valid);
        EXPECT_EQ(parsed.out, kBefore);
        EXPECT_EQ(parsed.output, "");
    }
}

TEST(GetTimestamp, BadSecondsSetOutToZero) {
    const struct {
        std::string text, traced;  // an empty one: nothing is printed
    } cases[] = {
        {"00:60.000", ""},       {"00:00:60.000", ""},    {"00:123456", ""},
        {"00:060.00", ""},       {"ab:60.000", ""},  // seconds are looked at first
        {"00:01,000", "01,000"}, {"00:-1.000", "-1.000"}, {"00:1.2.34", "1.2.34"},
        {"00:5.....", "5....."}, {"00:01.00a", "01.00a"}, {"00:01.00\0"s, "01.00\0"s},
        {"xx: 1.000", " 1.000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        const ReadNumber parsed = get_timestamp(c.text);
        EXPECT_FALSE(parsed.valid);
        EXPECT_EQ(parsed.out, 0.0);
        EXPECT_EQ(parsed.output,
                  c.traced.empty() ? "" : "input is " + c.traced + "\nNot a valid data string\n");
    }
}

}  // namespace
}  // namespace webvtt
