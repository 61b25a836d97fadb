// What the value parsers should say, computed by other means.
#pragma once

#include <string>
#include <string_view>

namespace fuzz {

/// Put into an output beforehand; no text gives it.
constexpr double kUntouched = -12345.5;

bool is_decimal(std::string_view text);
bool is_integer(std::string_view text);
bool is_percentage(std::string_view text);
bool is_time(std::string_view text);

/// Modulo 2^32; 0 for a text that is no integer.
unsigned expected_integer(std::string_view text);

// Whether an output is what its parser should have left there. Numbers with more digits than their
// 32 bits hold exactly are not compared.
bool is_expected_decimal(std::string_view text, double value);
bool is_expected_percentage(std::string_view text, double value);
/// For a text that is a time.
bool is_expected_time(std::string_view text, double value);

}  // namespace fuzz
