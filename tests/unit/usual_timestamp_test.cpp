// The fast way to read a time agrees with the thorough one wherever it says yes.
#include "base/usual_timestamp.h"

#include <gtest/gtest.h>

#include <string>

#include "base/value_parsers.h"
#include "support/exact_block.h"

namespace webvtt {
namespace {

constexpr double kBefore = 77.25;

bool is_usual(const std::string& text) {
    if (text.size() != kUsualTimestampSize || text[2] != ':' || text[5] != ':' || text[8] != '.' ||
        text[3] > '5' || text[6] > '5') {
        return false;
    }
    for (const std::size_t place : {0, 1, 3, 4, 6, 7, 9, 10, 11}) {
        if (text[place] < '0' || text[place] > '9') {
            return false;
        }
    }
    return true;
}

void expect_agreement(const std::string& text) {
    support::ExactBlock exact(text);
    double usual = kBefore;
    const bool accepted = parse_usual_timestamp(exact.data(), usual);
    ASSERT_EQ(accepted, is_usual(text)) << testing::PrintToString(text);
    double thorough = kBefore;
    if (accepted) {
        ASSERT_TRUE(parse_timestamp(text, thorough)) << text;
    }
    ASSERT_EQ(usual, thorough) << text;  // to the bit; both untouched when it was not accepted
}

TEST(UsualTimestamp, ReadsHoursMinutesSecondsAndThousandths) {
    const struct {
        const char* text;
        double expected;
    } cases[] = {
        {"00:00:00.000", 0.0},      {"00:00:01.500", 1.5},      {"01:02:03.000", 3723.0},
        {"99:59:59.000", 359999.0}, {"10:20:30.250", 37230.25},
    };
    for (const auto& c : cases) {
        double out = kBefore;
        EXPECT_TRUE(parse_usual_timestamp(c.text, out)) << c.text;
        EXPECT_EQ(out, c.expected) << c.text;
    }
}

// Each place takes each of the 256 bytes, so each border of each place is tried.
TEST(UsualTimestamp, AgreesForEveryByteInEveryPlace) {
    for (const char* const base : {"01:23:45.678", "59:59:59.999", "00:00:00.000"}) {
        for (std::size_t place = 0; place < kUsualTimestampSize; ++place) {
            std::string text = base;
            for (int byte = 0; byte < 256; ++byte) {
                text[place] = static_cast<char>(byte);
                expect_agreement(text);
            }
        }
    }
}

TEST(UsualTimestamp, AgreesForEveryThousandth) {
    for (int thousandth = 0; thousandth < 60000; ++thousandth) {
        std::string digits = std::to_string(100000 + thousandth);
        expect_agreement("07:42:" + digits.substr(1, 2) + "." + digits.substr(3));
    }
}

}  // namespace
}  // namespace webvtt
