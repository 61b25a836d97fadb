// Lines of printf and of std::cout that one chunk causes, in the order of their causes.
#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>
#include <string>

#include "parser_fixture.h"

namespace webvtt {
namespace {

class OutputOrder : public ParserTest {};

TEST_F(OutputOrder, OfHeadersAndCues) {
    EXPECT_EQ(feed("WEBVTT\n"
                   "Region: lines=a width=b%\n"
                   "X-TIMESTAMP-MAP=MPEGTS:x,LOCAL:00:00.000\n"
                   "Region: lines=c\n"
                   "\n"
                   "00:01.000 --> 00:02.000 line:d size:e% foo line:-5%\n"
                   "a<00:0f.000>b</g>\n"
                   "\n"
                   "00:0h.000 --> 00:02.000\n"
                   "x\n"
                   "\n"),
              0);
    expect_output(
        "input is a\n"
        "Not a valid data string\n"
        "input is b\n"
        "Not a valid data string\n"
        "MPEGTS:x\n"
        "MPEGTS:xfgParseMpegPts\n"
        "fgParseMpegPtsx\n"
        "data is 0\n"
        "[WEBVTT] ERR:: Invalid X-TIMESTAMP-MAP Meta Header Value!\n"
        "input is c\n"
        "Not a valid data string\n"
        "input is d\n"
        "Not a valid data string\n"
        "input is e\n"
        "Not a valid data string\n"
        "[WEBVTT] ERR:: Invalid SIZE value string e%\n"
        "[WEBVTT] ERR:: Item is Empty\n"
        "[WEBVTT] ERR:: dPos -5.000000 out of range [0.0, 100.0]\n"
        "\n"
        "input is 0f.000\n"
        "Not a valid data string\n"
        "[WEBVTT] ERR:: Invalid time stamp tag <00:0f.000> detected. Ignored\n"
        "[WEBVTT] ERR:: unexcepted end tag <g> detected. Ignored\n"
        "[WEBVTT] ERR:: Buffer Exhausted\n"
        "input is 0h.000\n"
        "Not a valid data string\n"
        "[WEBVTT] ERR:: Invalid Start Time Stamp <00:0h.000>\n"
        "[WEBVTT] ERR:: Error occured at LINE 11\n"
        "[WEBVTT] ERR:: FINISHED\n");
    EXPECT_EQ(texts(), Texts{"ab\n"});
}

TEST_F(OutputOrder, HostsOwnLinesStayWhereTheyWereWritten) {
    const std::string printed = support::output_of([&] {
        std::printf("host 1\n");
        parser.rsltParse("WEBVTT\nRegion: lines=x\n", 23);
        std::cout << "host 2\n";
        parser.rsltParse("\n", 1);
        std::printf("host 3\n");
    });
    EXPECT_EQ(printed,
              "host 1\n[WEBVTT] ERR:: Buffer Exhausted\ninput is x\nNot a valid data string\n"
              "host 2\n[WEBVTT] ERR:: Buffer Exhausted\n[WEBVTT] ERR:: FINISHED\nhost 3\n");
}

TEST_F(OutputOrder, HostsStreamFormatDoesNotShow) {
    const std::ios::fmtflags flags = std::cout.flags();
    std::cout << std::hex << std::showbase;
    EXPECT_EQ(feed("WEBVTT\nX-TIMESTAMP-MAP=LOCAL:00:00.000,MPEGTS:900000\n\n"), 0);
    std::cout.flags(flags);
    expect_output(
        "LOCAL:00:00.000\nMPEGTS:900000fgParseMpegPts\nfgParseMpegPts900000\n"
        "data is 900000\n" +
        support::error_lines({"Buffer Exhausted", "FINISHED"}));
}

}  // namespace
}  // namespace webvtt
