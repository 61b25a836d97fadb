// The first line of a track.
#include <gtest/gtest.h>

#include <string>

#include "parser_fixture.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

class SignatureTest : public ParserTest {};

// Fed with a blank line behind it, so an accepted track ends in the cue state with 0.
TEST(Signature, Accepted) {
    const std::string lines[] = {
        "WEBVTT\n",
        "WEBVTT \n",
        "WEBVTT\t\n",
        "WEBVTT - title\n",
        "WEBVTT\ttitle\n",
        "WEBVTT \0 title\n"s,
        "WEBVTT\r\n",
        "WEBVTT\r",
        "WEBVTT title\r\n",
        // The records of the signature table run on into each other; two of the three run-on ones
        // can be matched.
        "\xEF\xBB\xBFWEBVTT \xEF\xBB\xBFWEBVTT\tWEBVTT\n",
        "\xEF\xBB\xBFWEBVTT\tWEBVTT\n",
        "\xEF\xBB\xBFWEBVTT\tWEBVTT\r\n",
    };
    for (const std::string& line : lines) {
        SCOPED_TRACE(testing::PrintToString(line));
        WebVTTParser parser;
        int result = -1;
        const std::string output = support::output_of([&] {
            support::ExactBlock block(line + "\n");
            result = parser.rsltParse(block.data(), block.size());
            // A lone CR and the line feed behind it are one line end.
            if (result == 1) {
                result = parser.rsltParse("\n", 1);
            }
        });
        EXPECT_EQ(result, 0);
        EXPECT_EQ(output.find("magic"), std::string::npos);
        EXPECT_EQ(output.find("abort"), std::string::npos);
    }
}

struct RejectedCase {
    std::string chunk;
    bool magic;  // whether "Invalid magic number" is printed
};

TEST(Signature, Rejected) {
    const RejectedCase cases[] = {
        {"WEBVTTX\n\n", true},
        {"WEBVTT-\n\n", true},
        {"WEBVTT\f\n\n", true},
        {"WEBVT\n\n", true},
        {"webvtt\n\n", true},
        {" WEBVTT\n\n", true},
        {"XWEBVTT\n\n", true},
        {"<!DOCTYPE html>\n\n", true},
        {"1\n00:00:01,000 --> 00:00:02,000\nx\n\n", false},
        // With a byte order mark; the first record could only match across a line feed.
        {"\xEF\xBB\xBFWEBVTT\n\n", true},
        {"\xEF\xBB\xBFWEBVTT \n\n", true},
        {"\xEF\xBB\xBFWEBVTT\t\n\n", true},
        {"\xEF\xBB\xBFWEBVTT title\n\n", true},
        {"\xEF\xBB\xBFWEBVTT\n\xEF\xBB\xBFWEBVTT \xEF\xBB\xBFWEBVTT\tWEBVTT\n\n", true},
        {"\xEF\xBB\xBFWEBVTT \xEF\xBB\xBFWEBVTT\tWEBVTT \n\n", true},
        {"\xEF\xBB\xBFWEBVTT \xEF\xBB\xBFWEBVTT\t\n\n", true},
        {"\xEF\xBB\xBFWEBVTT\tWEBVTT title\n\n", true},
        {"\xEF\xBB\xBFWEBVTT\tWEBVT\n\n", true},
        {"\xFE\xFFWEBVTT\n\n", true},
        // Five bytes or fewer, the line feed included.
        {"WEBV\n\n", false},
        {"WEB\n\n", false},
        {"\n\n", false},
        {"\r\nWEBVTT\n\n", false},
        // A zero byte ends the line, and there is no line feed then.
        {"WEBVTT\0\n\n"s, true},
        {"WEBVT\0T\n\n"s, false},
        {"\0WEBVTT\n\n"s, false},
    };
    for (const RejectedCase& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.chunk));
        WebVTTParser parser;
        int result = -1;
        const std::string output = support::output_of([&] {
            support::ExactBlock block(c.chunk);
            result = parser.rsltParse(block.data(), block.size());
        });
        EXPECT_EQ(result, 2);
        EXPECT_EQ(output, (c.magic ? support::error_line("Invalid magic number") : "") +
                              support::error_line("It is NOT a valid WebVTT track, Parse abort!"));
    }
}

TEST_F(SignatureTest, FirstChunkMustHoldTheWholeLine) {
    for (const char* chunk : {"W", "WEBV", "WEBVTT", "WEBVTT - title"}) {
        SCOPED_TRACE(chunk);
        WebVTTParser other;
        int result = -1;
        EXPECT_EQ(support::output_of([&] {
                      support::ExactBlock block(chunk);
                      result = other.rsltParse(block.data(), block.size());
                  }),
                  support::error_line("It is NOT a valid WebVTT track, Parse abort!"));
        EXPECT_EQ(result, 2);
    }
}

TEST_F(SignatureTest, LastLineOfAChunkIsReportedBeforeTheVerdict) {
    EXPECT_EQ(feed("WEBVTTX\n"), 2);
    expect_errors({"Buffer Exhausted", "Invalid magic number",
                   "It is NOT a valid WebVTT track, Parse abort!"});
}

TEST_F(SignatureTest, RejectedTrackAnswersZeroToEveryLaterChunk) {
    EXPECT_EQ(feed("WEBV"), 2);
    for (const char* chunk : {"TT\n\n", "WEBVTT\n\n", "x\r", "\n"}) {
        EXPECT_EQ(feed(chunk), 0);
        expect_output("");
    }
    EXPECT_EQ(feed(block_at(1, "x")), 0);
    expect_output("");
    EXPECT_TRUE(cues().empty());
}

TEST_F(SignatureTest, BadArgumentsAreReportedToARejectedTrackToo) {
    EXPECT_EQ(feed("WEBV"), 2);
    EXPECT_EQ(feed(""), 1);
    expect_errors({"Invalid input, buffer size 0"});
}

TEST_F(SignatureTest, WorkerChecksOneLineOfTheBuffer) {
    char accepted[] = "WEBVTT\nx";
    char rejected[] = "WEBVTTX\nx";
    int result = -1;
    EXPECT_EQ(support::output_of([&] {
                  parser.vSetParsingBuffer(accepted, 8);
                  result = parser.ersltCheckValidation();
              }),
              "");
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(parser.fgIsBufferAvailable());
    EXPECT_EQ(support::output_of([&] {
                  parser.vSetParsingBuffer(rejected, 9);
                  result = parser.ersltCheckValidation();
              }),
              support::error_line("Invalid magic number"));
    EXPECT_EQ(result, 2);
}

}  // namespace
}  // namespace webvtt
