// Numbers, percentages, anchor points and times, read from text.
//
// Each function returns whether the text is valid and writes its result through a reference; what
// a false return leaves there is said at each. None throws, trims, or depends on the locale.
// Signs and exponents are not known anywhere.
#pragma once

#include <string_view>

namespace webvtt {

/// Digits with at most one "." anywhere among them ("5.", ".5" and "." are numbers).
///
/// The integer part wraps in 32 bits and is then read as signed, so "3000000000" is negative. The
/// n-th fractional digit is divided by 10^n as it wraps in signed 32 bits: exact up to the ninth,
/// another divisor from the tenth, and zero (so infinity or NaN) from the 32nd on.
/// An empty text leaves out as it is. Any other failure sets it to 0.0 and traces the text.
bool parse_double(std::string_view text, double& out);

/// A number as above with a "%" behind it; no range check. On failure out is 0.0; parse_double's
/// trace shows the text without the "%".
bool parse_percentage(std::string_view text, double& out);

/// Digits only, wrapping in 32 bits. On failure out is 0.
bool parse_uint(std::string_view text, unsigned int& out);

/// As parse_uint, and traces the result ("data is 42", "data is 0" after a failure) for every text
/// but the empty one.
bool parse_ulong(std::string_view text, unsigned long& out);

/// Two percentages joined by the first comma. False, with x and y untouched, unless there is text
/// on both sides of it. A part that is no percentage gives 0.0 and is no failure.
bool parse_anchorpoint(std::string_view text, double& x, double& y);

/// A time in seconds: [hours:]minutes:seconds, where seconds are the last six characters and any
/// number below 60 ("05.123", "000005"), minutes are below 60 and have two digits when hours
/// precede them, and hours are any digits. Times beyond 2^32 seconds wrap.
/// A failure leaves out as it is, but for bad seconds, which set it to 0.0.
bool parse_timestamp(std::string_view text, double& out);

}  // namespace webvtt
