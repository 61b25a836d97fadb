// Whole numbers, and pairs of percentages.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "base/value_parsers.h"
#include "base/webvtt_string.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

struct IntegerCase {
    std::string text;
    bool valid;
    unsigned expected;
};

// The grammar that str_to_uint and str_to_ulong share.
const IntegerCase kIntegers[] = {
    {"007", true, 7},
    {"0", true, 0},
    {"42", true, 42},
    {"4294967295", true, 4294967295u},
    {"4294967296", true, 0},
    {"4294967297", true, 1},
    {"99999999999", true, 1215752191u},
    {"12a", false, 0},
    {"a12", false, 0},
    {"x", false, 0},
    {"-1", false, 0},
    {"+1", false, 0},
    {" 1", false, 0},
    {"1 ", false, 0},
    {"1.0", false, 0},
    {"1\0"s, false, 0},
    {"\xB2", false, 0},
};

TEST(StrToUint, ReadsDigitsAndPrintsNothing) {
    for (const IntegerCase& c : kIntegers) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        unsigned int out = 77;
        bool valid = false;
        EXPECT_EQ(support::output_of([&] { valid = WebvttString(c.text).str_to_uint(out); }), "");
        EXPECT_EQ(valid, c.valid);
        EXPECT_EQ(out, c.expected);
    }
}

TEST(StrToUlong, TracesTheResultOfEveryTextThatIsNotEmpty) {
    for (const IntegerCase& c : kIntegers) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        unsigned long out = 77;
        bool valid = false;
        EXPECT_EQ(support::output_of([&] { valid = WebvttString(c.text).str_to_ulong(out); }),
                  "data is " + std::to_string(c.expected) + "\n");
        EXPECT_EQ(valid, c.valid);
        EXPECT_EQ(out, c.expected);
    }
}

TEST(StrToUint, EmptyTextGivesZeroAndFalse) {
    unsigned int out = 77;
    EXPECT_FALSE(WebvttString("").str_to_uint(out));
    EXPECT_EQ(out, 0u);
}

TEST(StrToUlong, EmptyTextGivesZeroAndFalseWithoutATrace) {
    unsigned long out = 77;
    bool valid = true;
    EXPECT_EQ(support::output_of([&] { valid = WebvttString("").str_to_ulong(out); }), "");
    EXPECT_FALSE(valid);
    EXPECT_EQ(out, 0u);
}

TEST(ParseNumbers, ReadNoDigitBehindTheText) {
    constexpr std::string_view kText = "12345";
    unsigned int whole = 77;
    EXPECT_TRUE(parse_uint(kText.substr(0, 2), whole));
    EXPECT_EQ(whole, 12u);
    double number = 77;
    EXPECT_TRUE(parse_double(kText.substr(0, 3), number));
    EXPECT_EQ(number, 123.0);
}

TEST(GetAnchorpoint, NeedsTextOnBothSidesOfTheFirstComma) {
    constexpr double kX = 7.5;  // what x and y hold before the call
    constexpr double kY = 8.5;
    const struct {
        std::string text;
        bool valid;
        double x, y;
        std::string output;
    } cases[] = {
        {"10%,90%", true, 10.0, 90.0, ""},
        {"150%,200%", true, 150.0, 200.0, ""},
        {"abc,def", true, 0.0, 0.0, ""},
        {"10%,def", true, 10.0, 0.0, ""},
        {"abc,90%", true, 0.0, 90.0, ""},
        {"1%,2%,3%", true, 1.0, 0.0, "input is 2%,3\nNot a valid data string\n"},
        {"a%,b%", true, 0.0, 0.0,
         "input is a\nNot a valid data string\ninput is b\nNot a valid data string\n"},
        {"5%,,", true, 5.0, 0.0, ""},
        {"5%, ", true, 5.0, 0.0, ""},
        {"10%", false, kX, kY, ""},
        {",5%", false, kX, kY, ""},
        {"5%,", false, kX, kY, ""},
        {"", false, kX, kY, ""},
        {",", false, kX, kY, ""},
        {",,", false, kX, kY, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        double x = kX;
        double y = kY;
        bool valid = !c.valid;
        EXPECT_EQ(support::output_of([&] { valid = WebvttString(c.text).get_anchorpoint(x, y); }),
                  c.output);
        EXPECT_EQ(valid, c.valid);
        EXPECT_EQ(x, c.x);
        EXPECT_EQ(y, c.y);
    }
}

}  // namespace
}  // namespace webvtt
