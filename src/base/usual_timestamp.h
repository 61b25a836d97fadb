// The two forms of a time that nearly every track uses, read without looking for their parts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/target.h"

namespace webvtt {

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

/// Reads "HH:MM:SS.fff" or "MM:SS.fff" from the front of a text; out is then, to the bit,
/// parse_timestamp's. Returns where the time ends; null, with out as it was, when the text begins
/// with neither.
inline const char* read_usual_timestamp(const char* text, const char* end, double& out) {
    constexpr int hours_size = 3;    // with the colon
    constexpr int minutes_size = 9;  // with all that follows
    const bool has_hours = end - text >= hours_size + minutes_size && text[5] == ':';
    const char* const minutes = text + (has_hours ? hours_size : 0);
    if (end - minutes < minutes_size) {
        return nullptr;
    }
    // The first four characters are hours and a digit, or minutes and a digit.
    const std::uint32_t misfits =
        u4Misfits(text, "00:0", has_hours ? "\6\6\17\12" : "\12\6\17\12") |
        u4Misfits(minutes + 1, "0:00", "\6\17\12\6") | u4Misfits(minutes + 5, ".000", "\17\6\6\6");
    if ((misfits & 0xF0F0F0F0u) != 0) {
        return nullptr;
    }
    const double fraction = kDigitFractions.tenths[minutes[6] - '0'] +
                            kDigitFractions.hundredths[minutes[7] - '0'] +
                            kDigitFractions.thousandths[minutes[8] - '0'];
    const int hours = has_hours ? two_digits(text) : 0;
    out = (hours * 60 + two_digits(minutes)) * 60 + (fraction + two_digits(minutes + 3));
    return minutes + minutes_size;
}

}  // namespace webvtt
