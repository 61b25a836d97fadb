// The state machine: chunks, results, and what becomes of the rest of a chunk after an error.
#include <gtest/gtest.h>

#include <string>

#include "parser_fixture.h"

namespace webvtt {
namespace {

class ParseDriver : public ParserTest {};

const std::string kTrack = "WEBVTT\n\n00:01.000 --> 00:02.000\nHi\n\n";
constexpr std::size_t kFirstLine = 7;

TEST_F(ParseDriver, WholeTrackInOneChunk) {
    EXPECT_EQ(feed(kTrack), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
    const auto delivered = cues();
    ASSERT_EQ(delivered.size(), 1u);
    EXPECT_EQ(delivered[0].start, 1.0);
    EXPECT_EQ(delivered[0].end, 2.0);
    EXPECT_EQ(delivered[0].text, "Hi\n");
}

// Every way to cut the track into up to three chunks, in all three line endings.
TEST_F(ParseDriver, TrackCutAnywhereBehindItsFirstLine) {
    for (const std::string line_end : {"\n", "\r\n", "\r"}) {
        std::string track;
        for (const char c : kTrack) {
            track += c == '\n' ? line_end : std::string(1, c);
        }
        const std::size_t header = kFirstLine - 1 + 2 * line_end.size();
        for (std::size_t first = kFirstLine; first < track.size(); ++first) {
            for (std::size_t second = first; second < track.size(); ++second) {
                WebVTTParser cut;
                std::vector<support::Delivery> delivered;
                cut.vSetWebvttEventNty(&delivered, [](WEBVTT_EVENT_T, void* tag, void* info) {
                    static_cast<std::vector<support::Delivery>*>(tag)->emplace_back(info);
                });
                std::size_t begin = 0;
                for (const std::size_t end : {first, second, track.size()}) {
                    if (begin == end) {
                        continue;
                    }
                    support::ExactBlock chunk(track.substr(begin, end - begin));
                    int result = -1;
                    support::output_of([&] { result = cut.rsltParse(chunk.data(), chunk.size()); });
                    // A header that ends in CR LF is over at its CR.
                    const bool in_header =
                        end < header && !(line_end == "\r\n" && end + 1 == header);
                    ASSERT_EQ(result, in_header ? 1 : 0) << first << " " << second << " " << end;
                    begin = end;
                }
                cut.vGetParseResult();
                ASSERT_EQ(delivered.at(0).cues.size(), 1u) << first << " " << second;
                ASSERT_EQ(delivered.at(0).cues[0].text, "Hi\n");
                ASSERT_EQ(delivered.at(0).cues[0].start, 1.0);
            }
        }
    }
}

TEST_F(ParseDriver, TrackByteByByteBehindItsFirstLine) {
    EXPECT_EQ(feed(kTrack.substr(0, kFirstLine)), 1);
    expect_errors({"Buffer Exhausted"});
    for (const char c : kTrack.substr(kFirstLine)) {
        EXPECT_EQ(feed(std::string_view(&c, 1)), 0);
    }
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

TEST_F(ParseDriver, CutInsideTheFirstLineItIsRejected) {
    for (std::size_t cut = 1; cut < kFirstLine; ++cut) {
        WebVTTParser other;
        support::ExactBlock chunk(kTrack.substr(0, cut));
        int result = -1;
        support::output_of([&] { result = other.rsltParse(chunk.data(), chunk.size()); });
        EXPECT_EQ(result, 2) << cut;
    }
}

// The size is unsigned and printed as signed.
TEST_F(ParseDriver, BadArgumentsChangeNothing) {
    const struct {
        unsigned size;
        const char* message;
    } cases[] = {
        {0, "Invalid input, buffer size 0"},
        {5, "Invalid input, buffer size 5"},
        {2147483647u, "Invalid input, buffer size 2147483647"},
        {2147483648u, "Invalid input, buffer size -2147483648"},
        {3000000000u, "Invalid input, buffer size -1294967296"},
        {4294967295u, "Invalid input, buffer size -1"},
    };
    const auto check_all = [&] {
        for (const auto& c : cases) {
            int result = -1;
            EXPECT_EQ(support::output_of([&] { result = parser.rsltParse(nullptr, c.size); }),
                      support::error_line(c.message));
            EXPECT_EQ(result, 1);
        }
        EXPECT_EQ(feed(""), 1);  // not null, but empty
        expect_errors({"Invalid input, buffer size 0"});
    };
    check_all();
    EXPECT_EQ(feed("WEBVTT\r"), 1);
    check_all();
    EXPECT_EQ(feed("\n\n00:01.000 --> 00:02.000\nH"), 0);
    check_all();
    EXPECT_EQ(feed("i\n\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

TEST_F(ParseDriver, LineFeedLeftOverFromACarriageReturnIsSkipped) {
    EXPECT_EQ(feed("WEBVTT\r"), 1);
    EXPECT_EQ(feed("\n\n00:01.000 --> 00:02.000\r\nHi\r\n\r"), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
    EXPECT_EQ(feed("\n" + block_at(3, "there")), 0);
    EXPECT_EQ(texts(), Texts{"there\n"});
}

TEST_F(ParseDriver, ChunkThatIsOnlyTheLeftOverLineFeed) {
    EXPECT_EQ(feed("WEBVTT\r"), 1);
    EXPECT_EQ(feed("\n"), 1);
    expect_output("");
    EXPECT_EQ(feed("\n"), 0);
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(feed("00:01.000 --> 00:02.000\rHi\r"), 0);
    EXPECT_EQ(feed("\n"), 0);
    expect_errors({"FINISHED"});
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

// The flag stays through chunks that do not begin with a line feed and eats a later one.
TEST_F(ParseDriver, LeftOverCarriageReturnSurvivesChunksThatDoNotBeginWithALineFeed) {
    start_cues();
    EXPECT_EQ(feed("00:01.000 --> 00:02.000\r"), 0);
    EXPECT_EQ(feed("Hi"), 0);
    EXPECT_EQ(feed(" th\nere"), 0);
    EXPECT_EQ(feed("\n\n"), 0);  // the first of the two is eaten
    expect_errors({"Buffer Exhausted", "FINISHED"});
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("\n"), 0);  // cleared by now
    EXPECT_EQ(texts(), Texts{"Hi th\nere\n"});
}

TEST_F(ParseDriver, TrackWithoutAFinalBlankLineKeepsItsLastCue) {
    EXPECT_EQ(feed("WEBVTT\n\n00:01.000 --> 00:02.000\nHi"), 0);
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed("\n"), 0);
    EXPECT_EQ(texts(), Texts{"Hi\n"});
}

// ---- A block that throws: the result of the block before decides ----

const std::string kBadStart = "bad --> 00:02.000\nx\n\n";

TEST_F(ParseDriver, BadStartInTheFirstBlockOfAChunkLosesTheRest) {
    start_cues();
    EXPECT_EQ(feed(kBadStart + block_at(3, "lost")), 0);
    expect_errors({"Invalid Start Time Stamp <bad>", "Error occured at LINE 5", "FINISHED"});
    EXPECT_TRUE(cues().empty());
    EXPECT_EQ(feed(block_at(4, "kept")), 0);
    EXPECT_EQ(texts(), Texts{"kept\n"});
}

TEST_F(ParseDriver, BadStartBehindAnotherBlockLosesOnlyItself) {
    start_cues();
    EXPECT_EQ(feed(block_at(1, "one") + kBadStart + kBadStart + block_at(3, "three")), 0);
    expect_errors({"Invalid Start Time Stamp <bad>", "Error occured at LINE 8",
                   "Invalid Start Time Stamp <bad>", "Error occured at LINE 11", "Buffer Exhausted",
                   "FINISHED"});
    EXPECT_EQ(texts(), (Texts{"one\n", "three\n"}));
}

TEST_F(ParseDriver, BlockThatFailedCountsAsABlockBefore) {
    start_cues();
    EXPECT_EQ(feed("no arrow\nhere\n\n" + kBadStart + block_at(3, "three")), 0);
    expect_errors({"Parse Cue Time and Settings Failed", kCueFailed,
                   "Invalid Start Time Stamp <bad>", "Error occured at LINE 8", "Buffer Exhausted",
                   "FINISHED"});
    EXPECT_EQ(texts(), Texts{"three\n"});
}

TEST_F(ParseDriver, BlocksOfEarlierChunksDoNotCount) {
    start_cues();
    EXPECT_EQ(feed(block_at(1, "one")), 0);
    EXPECT_EQ(feed("bad --> 00:02"), 0);
    EXPECT_EQ(feed(".000\nx\n\n" + block_at(3, "lost")), 0);
    EXPECT_EQ(texts(), Texts{"one\n"});
}

TEST_F(ParseDriver, HeaderInTheSameChunkIsNoBlockBefore) {
    EXPECT_EQ(feed("WEBVTT\nkind: x\n\n" + kBadStart + block_at(3, "lost")), 0);
    expect_errors({"Invalid Start Time Stamp <bad>", "Error occured at LINE 6", "FINISHED"});
    EXPECT_TRUE(cues().empty());
}

TEST_F(ParseDriver, BlockWithoutPayloadThrowsLikeABadStart) {
    start_cues();
    EXPECT_EQ(feed("00:01.000 --> 00:02.000\n\n" + block_at(3, "lost")), 0);
    expect_errors({"Error occured at LINE 4", "FINISHED"});
    EXPECT_EQ(feed(block_at(4, "one") + "id\n00:01.000 --> 00:02.000\n\n" + block_at(5, "two")), 0);
    EXPECT_EQ(texts(), (Texts{"one\n", "two\n"}));
}

TEST_F(ParseDriver, BadEndNeverLosesMoreThanItsBlock) {
    start_cues();
    EXPECT_EQ(feed("00:01.000 --> bad\nx\n\n" + block_at(3, "three")), 0);
    expect_errors({"Invalid End Time Stamp <bad>", "Parse Cue Time and Settings Failed", kCueFailed,
                   "Buffer Exhausted", "FINISHED"});
    EXPECT_EQ(texts(), Texts{"three\n"});
}

TEST_F(ParseDriver, UnknownStartTagEndsTheChunkAsOutOfMemory) {
    start_cues();
    EXPECT_EQ(feed(block_at(1, "one") + block_at(2, "a<foo>b") + block_at(3, "lost")), 2);
    expect_errors({"unexcepted start tag <foo> detected. Ignored", "out of memory"});
    EXPECT_EQ(feed(block_at(4, "four")), 0);  // still in the cue state
    EXPECT_EQ(texts(), (Texts{"one\n", "four\n"}));
}

TEST_F(ParseDriver, OutOfRangeErrorLeavesTheParser) {
    start_cues();
    EXPECT_EQ(feed_throws(block_at(1, "one") + "00:02.000 --> 00:03.000 line:-\nx\n\n" +
                          block_at(3, "lost")),
              "basic_string::at");
    expect_output("");
    EXPECT_EQ(feed(block_at(4, "four")), 0);
    EXPECT_EQ(texts(), (Texts{"one\n", "four\n"}));
}

}  // namespace
}  // namespace webvtt
