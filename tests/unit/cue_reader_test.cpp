// Cue blocks out of lines: blank lines, the ten-line limit, pieces.
#include <gtest/gtest.h>

#include <string>

#include "parser_fixture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

class CueReader : public ParserTest {
  protected:
    void SetUp() override { start_cues(); }
};

/// "l1\n" to "l<last>\n".
std::string numbered_lines(int first, int last) {
    std::string lines;
    for (int line = first; line <= last; ++line) {
        lines += "l" + std::to_string(line) + "\n";
    }
    return lines;
}

TEST_F(CueReader, BlankLinesBetweenBlocksMakeNoCues) {
    EXPECT_EQ(feed("\n\n" + block_at(1, "one") + "\n\r\n\r" + block_at(2, "two") + "\n\n\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(texts(), (Texts{"one\n", "two\n"}));
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_TRUE(cues().empty());
}

TEST_F(CueReader, AllLineEndsBecomeLineFeeds) {
    EXPECT_EQ(feed("00:01.000 --> 00:02.000\r\na\rb\nc\r\n\r\n"), 0);
    EXPECT_EQ(texts(), Texts{"a\nb\nc\n"});
}

TEST_F(CueReader, LineOfASpaceIsNotBlank) {
    EXPECT_EQ(feed(kTiming + "a\n \nb\n\n"), 0);
    EXPECT_EQ(texts(), Texts{"a\n \nb\n"});
}

TEST_F(CueReader, FailedBlockIsReportedAndPassedOver) {
    EXPECT_EQ(feed("STYLE\n\n" + block_at(1, "one") + "NOTE a\nb\n\n" + block_at(2, "two")), 0);
    expect_errors({"Invalid Input String of 2nd Line, return FALSE", kCueFailed,
                   "Parse Cue Time and Settings Failed", kCueFailed, "Buffer Exhausted",
                   "FINISHED"});
    EXPECT_EQ(texts(), (Texts{"one\n", "two\n"}));
}

TEST_F(CueReader, TwelveLinesAreATenLineCueAndABlockThatFails) {
    EXPECT_EQ(feed(kTiming + numbered_lines(1, 11) + "\n"), 0);
    expect_errors(
        {"Buffer Exhausted", "Parse Cue Time and Settings Failed", kCueFailed, "FINISHED"});
    EXPECT_EQ(texts(), Texts{numbered_lines(1, 9)});
}

TEST_F(CueReader, ElevenLinesLeaveOneLineThatFails) {
    EXPECT_EQ(feed(kTiming + numbered_lines(1, 10) + "\n"), 0);
    expect_errors({"Buffer Exhausted", "Invalid Input String of 2nd Line, return FALSE", kCueFailed,
                   "FINISHED"});
    EXPECT_EQ(texts(), Texts{numbered_lines(1, 9)});
}

TEST_F(CueReader, TenLinesAreCompleteWithoutABlankLine) {
    EXPECT_EQ(feed(kTiming + numbered_lines(1, 8)), 0);
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("l9\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(texts(), Texts{numbered_lines(1, 9)});
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_TRUE(cues().empty());
}

TEST_F(CueReader, IdentifierCountsAsALine) {
    EXPECT_EQ(feed("id\n" + kTiming + numbered_lines(1, 8)), 0);
    EXPECT_EQ(texts(), Texts{numbered_lines(1, 8)});
}

TEST_F(CueReader, CutBlockMayGoOnWithACueOfItsOwn) {
    EXPECT_EQ(feed(kTiming + numbered_lines(1, 9) + "00:03.000 --> 00:04.000\nsecond\n\n"), 0);
    EXPECT_EQ(texts(), (Texts{numbered_lines(1, 9), "second\n"}));
}

TEST_F(CueReader, CarriedLinesCountTowardsTheLimit) {
    for (std::size_t cut = 1; cut < kTiming.size() + numbered_lines(1, 9).size(); ++cut) {
        const std::string block = kTiming + numbered_lines(1, 9);
        EXPECT_EQ(feed(block.substr(0, cut)), 0);
        EXPECT_EQ(feed(block.substr(cut)), 0);
        EXPECT_EQ(texts(), Texts{numbered_lines(1, 9)}) << cut;
    }
}

TEST_F(CueReader, LineFeedThatCompletesTheTenthLineCompletesTheBlock) {
    EXPECT_EQ(feed(kTiming + numbered_lines(1, 8) + "l9"), 0);
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_EQ(texts(), Texts{numbered_lines(1, 9)});
}

TEST_F(CueReader, LineFeedBehindACutLineCompletesThatLine) {
    EXPECT_EQ(feed(kTiming + "Hi"), 0);
    expect_errors({"FINISHED"});
    EXPECT_EQ(feed("\nyou\n\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hi\nyou\n"});
}

TEST_F(CueReader, BlankLineBehindACarriedWholeLineEndsTheBlock) {
    EXPECT_EQ(feed(kTiming + "Hi\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(feed("\nyou\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

TEST_F(CueReader, ByteByByte) {
    const std::string track = block_at(1, "one\nmore") + "\r\n" + block_at(2, "<b>two</b>");
    for (const char c : track) {
        EXPECT_EQ(feed(std::string_view(&c, 1)), 0);
    }
    EXPECT_EQ(texts(), (Texts{"one\nmore\n", "two\n"}));
}

TEST_F(CueReader, LongLinesAndManyBlocks) {
    const std::string line(100000, 'x');
    std::string track;
    Texts expected;
    for (int block = 0; block < 200; ++block) {
        const std::string text = block % 50 == 0 ? line : std::to_string(block);
        track += block_at(block % 10, text);
        expected.push_back(text + "\n");
    }
    for (std::size_t begin = 0; begin < track.size(); begin += 1460) {
        EXPECT_EQ(feed(track.substr(begin, 1460)), 0);
    }
    EXPECT_EQ(texts(), expected);
}

TEST_F(CueReader, WorkerHandlesOneBlockAtATime) {
    const std::string track = block_at(1, "one") + block_at(2, "two") + "00:03";
    support::ExactBlock chunk(track);
    parser.vSetParsingBuffer(chunk.data(), chunk.size());
    EXPECT_EQ(parser.ersltParseCue(), 1);
    const WebvttCueNode* const first = parser.prGetParseResult()->prNext;
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first->pcText, "one\n");
    EXPECT_EQ(first->prNext, nullptr);
    EXPECT_EQ(parser.ersltParseCue(), 1);
    EXPECT_EQ(parser.ersltParseCue(), 0);
    EXPECT_EQ(texts(), (Texts{"one\n", "two\n"}));
    EXPECT_EQ(parser.prGetParseResult()->prNext, nullptr);
}

}  // namespace
}  // namespace webvtt
