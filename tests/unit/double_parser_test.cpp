// Decimal numbers and percentages.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "base/webvtt_string.h"
#include "support/stdout_capture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

ReadNumber str_to_double(const std::string& text) {
    return number_read_by([&](double& out) { return WebvttString(text).str_to_double(out); });
}

ReadNumber get_percentage(const std::string& text) {
    return number_read_by([&](double& out) { return WebvttString(text).get_percentage(out); });
}

TEST(StrToDouble, ReadsDigitsWithOnePoint) {
    const struct {
        std::string text;
        double expected;
    } cases[] = {
        {"12.5", 12.5},
        {"0", 0.0},
        {"007", 7.0},
        {".", 0.0},
        {"5.", 5.0},
        {".5", 0.5},
        {"0.25", 2 / 10.0 + 5 / 100.0},
        {"1.375", (3 / 10.0 + 7 / 100.0 + 5 / 1000.0) + 1},
        {"2147483647", 2147483647.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = str_to_double(c.text);
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(parsed.out, c.expected);
        EXPECT_EQ(parsed.output, "");
    }
}

TEST(StrToDouble, IntegerPartWrapsAndIsReadAsSigned) {
    const struct {
        std::string text;
        double expected;
    } cases[] = {
        {"2147483648", -2147483648.0},
        {"3000000000", -1294967296.0},
        {"3000000000.5", -1294967295.5},
        {"4294967295", -1.0},
        {"4294967296", 0.0},
        {"4294967297", 1.0},
        {"99999999999", 1215752191.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = str_to_double(c.text);
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(parsed.out, c.expected);
    }
}

TEST(StrToDouble, RefusesEverythingElseWithATrace) {
    const std::string texts[] = {
        "-1",  "+1",  "1.2.3", "..",  "1e2",  "1E2",  " 1",   "1 ",  "50%", "1,5",
        "abc", "0x1", "1\t",   "1\n", "1\0"s, "\xB2", "\xFF", "inf", "nan", "1:2",
    };
    for (const std::string& text : texts) {
        SCOPED_TRACE(testing::PrintToString(text));
        const ReadNumber parsed = str_to_double(text);
        EXPECT_FALSE(parsed.valid);
        EXPECT_EQ(parsed.out, 0.0);
        EXPECT_EQ(parsed.output, trace_of(text));
    }
}

TEST(StrToDouble, LeavesOutAloneForAnEmptyText) {
    const ReadNumber parsed = str_to_double("");
    EXPECT_FALSE(parsed.valid);
    EXPECT_EQ(parsed.out, kBefore);
    EXPECT_EQ(parsed.output, "");
}

// Powers of ten as 32 bits hold them: exact up to the ninth, then what is left of them.
TEST(StrToDouble, DivisorOfEachFractionalDigit) {
    const double divisors[] = {
        10,          100,        1000,          10000,       100000,      1000000,    10000000,
        100000000,   1000000000, 1410065408,    1215752192,  -727379968,  1316134912, 276447232,
        -1530494976, 1874919424, 1569325056,    -1486618624, -1981284352, 1661992960, -559939584,
        -1304428544, -159383552, -1593835520,   1241513984,  -469762048,  -402653184, 268435456,
        -1610612736, 1073741824, -2147483648.0,
    };
    std::string zeros;
    for (const double divisor : divisors) {
        SCOPED_TRACE(zeros.size() + 1);
        const ReadNumber parsed = str_to_double("0." + zeros + "1");
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(parsed.out, 1 / divisor);
        EXPECT_EQ(str_to_double("3." + zeros + "7").out, 7 / divisor + 3);
        zeros += '0';
    }
}

TEST(StrToDouble, DivisorIsZeroFromThe32ndFractionalDigit) {
    const std::string zeros31(31, '0');
    const struct {
        std::string text;
        bool infinite;  // otherwise not a number
    } cases[] = {
        {"0." + zeros31 + "1", true},
        {"9." + zeros31 + "9", true},
        {"0." + zeros31 + "0", false},
        {"0." + zeros31 + "11", true},
        {"0." + zeros31 + "10", false},
        {"0." + zeros31 + "01", false},
        {"0." + zeros31 + std::string(1000, '9'), true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = str_to_double(c.text);
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(std::isnan(parsed.out), !c.infinite);
        EXPECT_EQ(parsed.out == kInfinity, c.infinite);
        EXPECT_EQ(parsed.output, "");
    }
}

TEST(GetPercentage, ReadsANumberBeforeThePercentSign) {
    const struct {
        std::string text;
        double expected;
    } cases[] = {
        {"50%", 50.0},         {"0%", 0.0}, {"100%", 100.0}, {"150%", 150.0},
        {"12.5%", 12.5},       {".%", 0.0}, {"5.%", 5.0},    {"3000000000%", -1294967296.0},
        {"4294967346%", 50.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = get_percentage(c.text);
        EXPECT_TRUE(parsed.valid);
        EXPECT_EQ(parsed.out, c.expected);
        EXPECT_EQ(parsed.output, "");
    }
}

TEST(GetPercentage, RefusesOtherTextsAndClearsOut) {
    const struct {
        std::string text, traced;  // an empty one: nothing is printed
    } cases[] = {
        {"", ""},        {"%", ""},       {"50", ""},      {"5", ""},       {"50% ", ""},
        {"1e2%", "1e2"}, {"-5%", "-5"},   {"%%", "%"},     {"50%%", "50%"}, {" 50%", " 50"},
        {"abc", ""},     {"abc%", "abc"}, {"5\t%", "5\t"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const ReadNumber parsed = get_percentage(c.text);
        EXPECT_FALSE(parsed.valid);
        EXPECT_EQ(parsed.out, 0.0);
        EXPECT_EQ(parsed.output, c.traced.empty() ? "" : trace_of(c.traced));
    }
}

}  // namespace
}  // namespace webvtt
