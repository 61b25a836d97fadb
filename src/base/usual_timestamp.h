// The one form of a time that nearly every track uses, read without looking for its parts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/target.h"

namespace webvtt {

/// How many characters "HH:MM:SS.fff" has.
constexpr std::size_t kUsualTimestampSize = 12;

/// What a digit counts as in each place behind the point. Divided as parse_double divides, so that
/// the sums are the same to the bit.
struct Digit_Fractions {
    double tenths[10];
    double hundredths[10];
    double thousandths[10];
};

constexpr Digit_Fractions make_digit_fractions() {
    Digit_Fractions fractions{};
    for (int digit = 0; digit < 10; ++digit) {
        fractions.tenths[digit] = digit / 10.0;
        fractions.hundredths[digit] = digit / 100.0;
        fractions.thousandths[digit] = digit / 1000.0;
    }
    return fractions;
}

// Not a local of the function below, where each call would copy it.
inline constexpr Digit_Fractions kDigitFractions = make_digit_fractions();

/// Tells four characters by one comparison: bits of 0xF0F0F0F0 are set in the result unless each
/// character is the expected one or a digit beyond it. How far beyond, says the margin: 15 less
/// that distance, so that adding it reaches 16 exactly when the character is too large.
inline std::uint32_t u4Misfits(const char* text, const char* expected, const char* margins) {
    std::uint32_t found = 0;
    std::uint32_t base = 0;
    std::uint32_t margin = 0;
    std::memcpy(&found, text, sizeof found);
    std::memcpy(&base, expected, sizeof base);
    std::memcpy(&margin, margins, sizeof margin);
    // Exclusive or subtracts, for '0' has no low bits. A sum that carries into the next character
    // does no harm: the character that it came from is a misfit already.
    const std::uint32_t distance = found ^ base;
    return distance | (distance + margin);
}

/// The value of two digits, which they must be.
inline int two_digits(const char* text) {
    return text[0] * 10 + text[1] - '0' * 11;
}

/// Reads kUsualTimestampSize characters if they are "HH:MM:SS.fff"; the result is then, to the bit,
/// parse_timestamp's. False, with out as it was, for every other text, valid or not.
inline bool parse_usual_timestamp(const char* text, double& out) {
    const std::uint32_t misfits = u4Misfits(text, "00:0", "\6\6\17\12") |
                                  u4Misfits(text + 4, "0:00", "\6\17\12\6") |
                                  u4Misfits(text + 8, ".000", "\17\6\6\6");
    if ((misfits & 0xF0F0F0F0u) != 0) {
        return false;
    }
    const int minutes = two_digits(text) * 60 + two_digits(text + 3);
    const double fraction = kDigitFractions.tenths[text[9] - '0'] +
                            kDigitFractions.hundredths[text[10] - '0'] +
                            kDigitFractions.thousandths[text[11] - '0'];
    out = minutes * 60 + (fraction + two_digits(text + 6));
    return true;
}

}  // namespace webvtt
