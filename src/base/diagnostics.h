// The two ways in which the module speaks on standard output.
//
// Both end up in the C library's stdout in the order in which they are called, as long as the host
// leaves std::cout synchronised with it, which is the default.
#pragma once

#include <string_view>

namespace webvtt {

/// Prints "[WEBVTT] ERR:: ", the message, and a line feed, with printf and putchar. The prefix is
/// used for informational lines too ("FINISHED"): testers filter logs by it.
[[gnu::format(printf, 1, 2)]] void print_error(const char* format, ...);

/// Writes the two texts and a line end to std::cout and flushes it, whatever width, base or locale
/// the host has set there.
void print_trace(std::string_view first, std::string_view second = {});

}  // namespace webvtt

/// A text view as arguments for "%.*s".
#define WEBVTT_PRINTABLE(view) static_cast<int>((view).size()), (view).data()
