// What many tests of values, lines and cues start from and look for.
#pragma once

#include <limits>
#include <stdexcept>
#include <string>

#include "base/errors.h"
#include "support/stdout_capture.h"

namespace webvtt {

inline const std::string kTiming = "00:01.000 --> 00:02.000\n";

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// What a number holds before it is read.
constexpr double kBefore = 77.25;

/// What reading a number gave and printed.
struct ReadNumber {
    bool valid = false;
    double out = kBefore;
    std::string output;
};

/// read(out) reads the number and returns whether it is one.
template <typename Read>
ReadNumber number_read_by(Read read) {
    ReadNumber number;
    number.output = support::output_of([&] { number.valid = read(number.out); });
    return number;
}

/// What is printed for a text that is no number.
inline std::string trace_of(const std::string& text) {
    return "input is " + text + "\nNot a valid data string\n";
}

/// What comes of a call: "true", "false" or the error's text.
template <typename Call>
std::string outcome_of(Call call) {
    try {
        return call() ? "true" : "false";
    } catch (const RuntimeException& error) {
        return error.strGetMessage();
    } catch (const std::out_of_range& error) {
        return error.what();
    }
}

}  // namespace webvtt
