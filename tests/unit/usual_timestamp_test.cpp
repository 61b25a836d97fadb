// The fast way to read a time agrees with the thorough one wherever it says yes.
#include "base/usual_timestamp.h"

#include <gtest/gtest.h>

#include <string>

#include "base/value_parsers.h"
#include "support/exact_block.h"
#include "usual_values.h"

namespace webvtt {
namespace {

/// How many characters at the front of the text are a time in one of the usual forms.
std::size_t usual_size(const std::string& text) {
    for (const std::string_view form : {"99:59:59.999", "59:59.999"}) {
        std::size_t place = 0;
        while (place < form.size() && place < text.size() &&
               (form[place] < '0' || form[place] > '9'
                    ? text[place] == form[place]
                    : text[place] >= '0' && text[place] <= form[place])) {
            ++place;
        }
        if (place == form.size()) {
            return place;
        }
    }
    return 0;
}

void expect_agreement(const std::string& text) {
    support::ExactBlock exact(text);
    const char* const begin = exact.data();
    double usual = kBefore;
    const char* const end = read_usual_timestamp(begin, begin + exact.size(), usual);
    const std::size_t size = end != nullptr ? static_cast<std::size_t>(end - begin) : 0;
    ASSERT_EQ(size, usual_size(text)) << testing::PrintToString(text);
    double thorough = kBefore;
    if (size != 0) {
        ASSERT_TRUE(parse_timestamp(std::string_view(text).substr(0, size), thorough)) << text;
    }
    ASSERT_EQ(usual, thorough) << text;  // to the bit; both untouched when it was not accepted
}

TEST(UsualTimestamp, ReadsHoursMinutesSecondsAndThousandths) {
    const struct {
        const char* text;
        double expected;
    } cases[] = {
        {"00:00:00.000", 0.0},      {"00:00:01.500", 1.5},      {"01:02:03.000", 3723.0},
        {"99:59:59.000", 359999.0}, {"10:20:30.250", 37230.25}, {"59:59.000", 3599.0},
        {"00:00.000", 0.0},
    };
    for (const auto& c : cases) {
        double out = kBefore;
        const std::string text = std::string(c.text) + "x";
        const char* const end = read_usual_timestamp(text.data(), text.data() + text.size(), out);
        EXPECT_EQ(end, text.data() + text.size() - 1) << text;
        EXPECT_EQ(out, c.expected) << c.text;
    }
}

// Each place takes each of the 256 bytes, so each border of each place is tried.
TEST(UsualTimestamp, AgreesForEveryByteInEveryPlace) {
    for (const char* const base : {"01:23:45.678", "59:59:59.999", "00:00:00.000", "23:45.678",
                                   "59:59.999", "00:00.000", "12:34.567 --> 12:35.000"}) {
        for (std::size_t place = 0; base[place] != '\0'; ++place) {
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

TEST(UsualTimestamp, NeedsEveryCharacter) {
    for (const std::string text : {"01:23:45.678", "23:45.678"}) {
        for (std::size_t size = 0; size <= text.size(); ++size) {
            expect_agreement(text.substr(0, size));
        }
    }
}

}  // namespace
}  // namespace webvtt
