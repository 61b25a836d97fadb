// Zero bytes. Texts are measured up to their first zero: it cuts off the rest of its line, the line
// end included, although all of that is consumed.
#include <gtest/gtest.h>

#include <string>

#include "parser_fixture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

class ZeroBytesInHeaders : public ParserTest {};

TEST_F(ZeroBytesInHeaders, LineOfLengthZeroIsIgnored) {
    EXPECT_EQ(feed("WEBVTT\n\0kind: x\n"s), 1);
    EXPECT_EQ(feed("\0\n"s), 1);
    EXPECT_EQ(feed("\n"), 0);
}

TEST_F(ZeroBytesInHeaders, LineOfOneByteEndsTheSection) {
    EXPECT_EQ(feed("WEBVTT\nx\0 is all that counts\n"s), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
}

TEST_F(ZeroBytesInHeaders, LineOfTwoBytesDoesNot) {
    EXPECT_EQ(feed("WEBVTT\nxy\0z\n"s), 1);
}

TEST_F(ZeroBytesInHeaders, ValueEndsAtTheZero) {
    EXPECT_EQ(feed("WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\0junk\n\n"s), 0);
    EXPECT_EQ(feed(block_at(1, "x")), 0);
    EXPECT_EQ(cues().at(0).start, 11.0);
}

TEST_F(ZeroBytesInHeaders, ValueCutShort) {
    EXPECT_EQ(feed_throws("WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:1\0,LOCAL:00:00.000\n\n"s),
              "basic_string::substr");
    EXPECT_EQ(feed_throws("X-TIMESTAMP-MAP\0=MPEGTS:1,LOCAL:00:00.000\n\n"s), "basic_string::at");
    EXPECT_EQ(feed("Region: lines=x\0\n\n"s), 0);
    expect_output("input is x\nNot a valid data string\n" +
                  support::error_lines({"Buffer Exhausted", "FINISHED"}));
}

TEST_F(ZeroBytesInHeaders, CarriedTailEndsAtItsZero) {
    EXPECT_EQ(feed("WEBVTT\nRegion: li\0lost"s), 1);
    EXPECT_EQ(feed("nes=x\n"), 1);
    expect_output(support::error_line("Buffer Exhausted") +
                  "input is x\nNot a valid data string\n");
}

// The tail is carried although it is empty; the line feed behind it makes one byte, a blank line.
TEST_F(ZeroBytesInHeaders, CarriedTailMayBeEmpty) {
    EXPECT_EQ(feed("WEBVTT\n\0kind: x"s), 1);
    EXPECT_EQ(feed("\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
}

TEST_F(ZeroBytesInHeaders, CarriedTextMakesALineOfOneByteALongerOne) {
    EXPECT_EQ(feed("WEBVTT\nxy\0z"s), 1);
    EXPECT_EQ(feed("\n"), 1);  // "xy\n"
    EXPECT_EQ(feed("x\0"s), 1);
    EXPECT_EQ(feed("\0\n"s), 0);  // "x" and nothing: one byte in all
}

class ZeroBytesInCues : public ParserTest {
  protected:
    void SetUp() override { start_cues(); }
};

TEST_F(ZeroBytesInCues, LineOfLengthZeroIsBlank) {
    EXPECT_EQ(feed("\0\n\0junk\n"s + kTiming + "Hi\n\0junk\n"s), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

TEST_F(ZeroBytesInCues, LineOfOneByteIsBlank) {
    EXPECT_EQ(feed("x\0\ny\0junk\n"s + kTiming + "Hi\nx\0junk\n"s), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

TEST_F(ZeroBytesInCues, LineCutShortIsJoinedWithTheNextOne) {
    EXPECT_EQ(feed(kTiming + "Hi\0 there\nyou\nyo\0u\n\n"s), 0);
    EXPECT_EQ(texts(), Texts{"Hiyou\nyo"});
}

TEST_F(ZeroBytesInCues, TimingLineCutShortSwallowsThePayload) {
    EXPECT_EQ(feed("00:01.000 --> 00:02.000\0 align:end\nHi\n\n"s), 0);
    expect_errors({"Buffer Exhausted", "Invalid End Time Stamp <00:02.000Hi>",
                   "Parse Cue Time and Settings Failed", kCueFailed, "FINISHED"});
}

TEST_F(ZeroBytesInCues, CarriedTailEndsAtItsZero) {
    EXPECT_EQ(feed(kTiming + "Hi\0 the"s), 0);
    EXPECT_EQ(feed("re\n\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hire\n"});
}

// An empty carried text is the front of a block, and it does not end with a line feed.
TEST_F(ZeroBytesInCues, CarriedTextMayBeEmpty) {
    EXPECT_EQ(feed("\0junk"s), 0);
    expect_errors({"FINISHED"});
    EXPECT_EQ(feed("\n\n"), 0);
    expect_errors({"Buffer Exhausted", "Invalid Input String of 1st Line, return FALSE", kCueFailed,
                   "FINISHED"});
    EXPECT_EQ(feed("\0"s), 0);
    EXPECT_EQ(feed(block_at(1, "Hi")), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

TEST_F(ZeroBytesInCues, LineOfLengthZeroBehindAnEmptyCarriedText) {
    EXPECT_EQ(feed("\0"s), 0);
    EXPECT_EQ(feed("\0\n\n"s), 0);
    expect_errors({"Buffer Exhausted", "Invalid Input String of 1st Line, return FALSE", kCueFailed,
                   "FINISHED"});
}

// The first blank line behind an unfinished line completes it, with what the line holds.
TEST_F(ZeroBytesInCues, BlankLinesBehindAnUnfinishedLine) {
    EXPECT_EQ(feed(kTiming + "Hi"), 0);
    EXPECT_EQ(feed("\0junk\n\n"s), 0);
    EXPECT_EQ(texts(), Texts{"Hi"});
    EXPECT_EQ(feed(kTiming + "Hi"), 0);
    EXPECT_EQ(feed("x\0junk\n\n"s), 0);
    EXPECT_EQ(texts(), Texts{"Hix"});
}

TEST_F(ZeroBytesInCues, LinesCutShortCountTowardsTheLimit) {
    std::string lines;
    for (int line = 1; line <= 9; ++line) {
        lines += "ab\0c\n"s;
    }
    EXPECT_EQ(feed(kTiming + lines), 0);
    EXPECT_EQ(texts(), Texts{"ababababababababab"});
}

// Carried lines are counted by their line feeds, of which lines that were cut short have none.
TEST_F(ZeroBytesInCues, CarriedLinesCutShortDoNotCountTowardsTheLimit) {
    EXPECT_EQ(feed(kTiming + "ab\0c\nab\0c\nab\0c\n"s), 0);
    EXPECT_EQ(feed("c1\nc2\nc3\nc4\nc5\nc6\nc7\nc8\n"), 0);
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("c9\n"), 0);
    EXPECT_EQ(texts(), Texts{"abababc1\nc2\nc3\nc4\nc5\nc6\nc7\nc8\nc9\n"});
}

TEST_F(ZeroBytesInCues, ZeroIsNoLineEnd) {
    EXPECT_EQ(feed(kTiming + "Hi\0"s), 0);
    EXPECT_EQ(feed("\0\0"s), 0);
    expect_errors({"FINISHED"});
    EXPECT_EQ(feed("there\r\0\r"s), 0);
    EXPECT_EQ(texts(), Texts{"Hithere\n"});
}

}  // namespace
}  // namespace webvtt
