// Header lines: which become headers, and what chunk ends do to them.
#include <gtest/gtest.h>

#include <string>

#include "parser_fixture.h"

namespace webvtt {
namespace {

/// Header lines show in the traces of their values and in the shift of cue times.
class HeaderReader : public ParserTest {
  protected:
    double start_of_next_cue() {
        EXPECT_EQ(feed(block_at(1, "x")), 0);
        const auto delivered = cues();
        return delivered.empty() ? -1000.0 : delivered[0].start;
    }
};

const std::string kMap10 = "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n";
const std::string kMap20 = "X-TIMESTAMP-MAP=LOCAL:00:00:00.000,MPEGTS:1800000\n";
const std::string kMap10Trace =
    "MPEGTS:900000\nMPEGTS:900000fgParseMpegPts\nfgParseMpegPts900000\ndata is 900000\n";

TEST_F(HeaderReader, SectionEndsAtTheFirstBlankLine) {
    EXPECT_EQ(feed("WEBVTT\nkind: captions\nlanguage: en\n \n"), 1);
    expect_errors({"Buffer Exhausted"});
    EXPECT_EQ(feed("\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
}

TEST_F(HeaderReader, ManyHeaderLines) {
    std::string lines;
    for (int line = 0; line < 1000; ++line) {
        lines += "Region: id=r" + std::to_string(line) + "\n";
    }
    EXPECT_EQ(feed("WEBVTT\n" + lines + "\n" + block_at(1, "x")), 0);
    EXPECT_EQ(texts(), Texts{"x\n"});
}

TEST_F(HeaderReader, RegionLinesAreParsed) {
    EXPECT_EQ(feed("WEBVTT\nRegion: lines=x\nRegion:width=y%\n\n"), 0);
    expect_output("input is x\nNot a valid data string\ninput is y\nNot a valid data string\n" +
                  support::error_lines({"Buffer Exhausted", "FINISHED"}));
}

TEST_F(HeaderReader, KeywordsAreExactAndAtTheLinesStart) {
    EXPECT_EQ(feed("WEBVTT\nregion: lines=x\nRegion lines=x\n Region: lines=x\nREGION: lines=x\n"
                   "x-timestamp-map=MPEGTS:1\n X-TIMESTAMP-MAP=MPEGTS:1\nX-TIMESTAMP-MA\n\n"),
              0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
}

TEST_F(HeaderReader, MapShiftsTheCues) {
    EXPECT_EQ(feed("WEBVTT\n" + kMap10 + "\n"), 0);
    expect_output(kMap10Trace + support::error_lines({"Buffer Exhausted", "FINISHED"}));
    EXPECT_EQ(start_of_next_cue(), 11.0);
}

TEST_F(HeaderReader, KeywordOfAMapMayGoOn) {
    EXPECT_EQ(feed("WEBVTT\nX-TIMESTAMP-MAPS=MPEGTS:1,LOCAL:00:00.000\n"), 1);
    // The "S" is taken for the front of the first item.
    expect_output(support::error_line("Buffer Exhausted") +
                  "S=MPEGTS:1\nS=MPEGTS:1fgParseMpegPts\nfgParseMpegPtsS:1\ndata is 0\n" +
                  support::error_line("Invalid X-TIMESTAMP-MAP Meta Header Value!"));
}

TEST_F(HeaderReader, SecondMapOfACallIsIgnored) {
    EXPECT_EQ(feed("WEBVTT\n" + kMap10 + kMap20 + "\n"), 0);
    expect_output(kMap10Trace + support::error_lines({"Buffer Exhausted", "FINISHED"}));
    EXPECT_EQ(start_of_next_cue(), 11.0);
}

TEST_F(HeaderReader, InvalidFirstMapStillCountsAsTheCallsMap) {
    EXPECT_EQ(feed("WEBVTT\nX-TIMESTAMP-MAP=FOO\n" + kMap10 + "\n"), 0);
    EXPECT_EQ(start_of_next_cue(), 1.0);
}

TEST_F(HeaderReader, MapOfALaterCallTakesItsPlace) {
    EXPECT_EQ(feed("WEBVTT\n" + kMap10), 1);
    EXPECT_EQ(feed(kMap20 + "\n"), 0);
    EXPECT_EQ(start_of_next_cue(), 21.0);
}

TEST_F(HeaderReader, InvalidMapOfALaterCallUndoesTheShift) {
    EXPECT_EQ(feed("WEBVTT\n" + kMap10), 1);
    EXPECT_EQ(feed("X-TIMESTAMP-MAP=FOO\n\n"), 0);
    EXPECT_EQ(start_of_next_cue(), 1.0);
}

TEST_F(HeaderReader, MapThatThrowsLosesTheChunkAndStaysTheCurrentMap) {
    EXPECT_EQ(feed("WEBVTT\n" + kMap10), 1);
    EXPECT_EQ(feed_throws("X-TIMESTAMP-MAP=MPEGTS:1\n\n" + block_at(1, "lost")),
              "basic_string::substr");
    expect_output("MPEGTS:1\nMPEGTS:1fgParseMpegPts\nfgParseMpegPts1\ndata is 1\n");
    EXPECT_EQ(feed("\n"), 0);  // still in the header section
    EXPECT_EQ(start_of_next_cue(), 1.0);
}

TEST_F(HeaderReader, MapWithoutAValueThrows) {
    EXPECT_EQ(feed_throws("WEBVTT\nX-TIMESTAMP-MAP\n\n"), "basic_string::at");
    expect_output("");
    EXPECT_EQ(feed("\n"), 0);
}

TEST_F(HeaderReader, LineCutIntoTwoChunksIsJoined) {
    for (std::size_t cut = 1; cut < kMap10.size(); ++cut) {
        WebVTTParser other;
        std::string printed;
        for (const std::string& chunk :
             {"WEBVTT\n" + kMap10.substr(0, cut), kMap10.substr(cut) + "\n"}) {
            support::ExactBlock block(chunk);
            printed += support::output_of([&] { other.rsltParse(block.data(), block.size()); });
        }
        EXPECT_NE(printed.find(kMap10Trace), std::string::npos) << cut;
    }
}

TEST_F(HeaderReader, LineCutIntoThreeChunksLosesItsFirstPiece) {
    EXPECT_EQ(feed("WEBVTT\nX-TIMESTAMP-MAP=MPEG"), 1);
    EXPECT_EQ(feed("TS:900000,LOCAL:00:0"), 1);
    EXPECT_EQ(feed("0:00.000\n\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});  // and no trace
    EXPECT_EQ(start_of_next_cue(), 1.0);
}

TEST_F(HeaderReader, LastTwoPiecesOfALineMayMakeAHeader) {
    EXPECT_EQ(feed("WEBVTT\nNOTE "), 1);
    EXPECT_EQ(feed("Region: li"), 1);
    EXPECT_EQ(feed("nes=x\n"), 1);
    expect_output(support::error_line("Buffer Exhausted") +
                  "input is x\nNot a valid data string\n");
}

TEST_F(HeaderReader, CueTextOverManyChunksLosesNothing) {
    start_cues();
    for (const char* chunk : {"00:01", ".000 --> 0", "0:02.00", "0\nHel", "lo ", "wor", "ld\n"}) {
        EXPECT_EQ(feed(chunk), 0);
    }
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hello world\n"});
}

TEST_F(HeaderReader, BlankLineBehindACutLineEndsThatLineOnly) {
    EXPECT_EQ(feed("WEBVTT\nkind: x"), 1);
    EXPECT_EQ(feed("\n"), 1);
    EXPECT_EQ(feed("\n"), 0);
}

TEST_F(HeaderReader, WorkerTellsTheEndOfTheSectionFromTheEndOfTheChunk) {
    char chunk[] = "kind: x\n\nrest";
    parser.vSetParsingBuffer(chunk, 13);
    EXPECT_EQ(parser.ersltParseMetadataHeader(), 0);
    EXPECT_EQ(parser.ersltParseMetadataHeader(), 1);
}

}  // namespace
}  // namespace webvtt
