// The two channels on standard output, and that their lines come out in the order of the calls.
#include "base/diagnostics.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <iostream>
#include <string>

#include "support/stdout_capture.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;
using support::output_of;

TEST(Diagnostics, ErrorLinesHavePrefixMessageAndLineFeed) {
    EXPECT_EQ(output_of([] { print_error("FINISHED"); }), "[WEBVTT] ERR:: FINISHED\n");
    EXPECT_EQ(output_of([] { print_error("<%s> at %d, %f", "a\tb", -7, 0.5); }),
              "[WEBVTT] ERR:: <a\tb> at -7, 0.500000\n");
    const std::string_view part = std::string_view("abcdef").substr(1, 3);
    EXPECT_EQ(output_of([&] { print_error("<%.*s>", WEBVTT_PRINTABLE(part)); }),
              "[WEBVTT] ERR:: <bcd>\n");
}

TEST(Diagnostics, ErrorLinesAreNotCut) {
    const std::string text(10000, 'x');
    EXPECT_EQ(output_of([&] { print_error("%s", text.c_str()); }), "[WEBVTT] ERR:: " + text + "\n");
}

TEST(Diagnostics, TraceLinesHaveNoPrefix) {
    EXPECT_EQ(output_of([] { print_trace("one"); }), "one\n");
    EXPECT_EQ(output_of([] { print_trace("one", "two"); }), "onetwo\n");
    EXPECT_EQ(output_of([] { print_trace(""); }), "\n");
    EXPECT_EQ(output_of([] { print_trace("a\0b"s, "%s"); }), "a\0b%s\n"s);
}

TEST(Diagnostics, TraceLinesAreFlushed) {
    support::StdoutCapture capture;
    print_trace("one", "two");
    EXPECT_EQ(capture.peek(), "onetwo\n");
}

TEST(Diagnostics, BothChannelsKeepTheOrderOfTheCalls) {
    const std::string output = output_of([] {
        print_error("1");
        print_trace("2");
        print_error("3");
        print_error("4");
        print_trace("5");
        print_trace("6");
        print_error("7");
    });
    EXPECT_EQ(output,
              "[WEBVTT] ERR:: 1\n2\n[WEBVTT] ERR:: 3\n[WEBVTT] ERR:: 4\n5\n6\n"
              "[WEBVTT] ERR:: 7\n");
}

TEST(Diagnostics, TraceLinesIgnoreTheStreamsFormat) {
    const std::ios::fmtflags flags = std::cout.flags();
    const std::string output = output_of([] {
        std::cout << std::hex << std::showbase << std::left << std::setfill('*') << std::setw(20);
        print_trace("data is ", "42");
        std::cout.width(0);
    });
    std::cout.flags(flags);
    std::cout.fill(' ');
    EXPECT_EQ(output, "data is 42\n");
}

}  // namespace
}  // namespace webvtt
