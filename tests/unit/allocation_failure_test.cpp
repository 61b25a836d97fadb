// Memory that runs out: what is thrown or printed at each place, and what is left afterwards.
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "api/entry_points.h"
#include "api/handle_registry.h"
#include "base/errors.h"
#include "cue/cue.h"
#include "parser/block_buffer.h"
#include "parser/record_arena.h"
#include "parser_fixture.h"
#include "support/memory.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using support::error_line;
using support::FailingNew;

constexpr std::size_t kLarge = 4500;  // only the long texts below need that much at a time
const std::string kLong(5000, 'x');
/// The message of the BadAllocException that a call throws while memory runs out.
template <typename Call>
std::string message_of(Call call, std::size_t smallest, unsigned spared = 0, unsigned times = ~0u) {
    std::string message = "nothing was thrown";
    try {
        const FailingNew failing(smallest, spared, times);
        call();
    } catch (const BadAllocException& error) {
        message = error.strGetMessage();
    } catch (const std::bad_alloc&) {
        message = "the standard error";
    }
    return message;
}

class AllocationFailure : public ParserTest {
  protected:
    /// As feed, while allocations of at least the given size fail. Gives "2", or the message of
    /// what was thrown.
    std::string feed_failing(const std::string& chunk, std::size_t smallest = kLarge,
                             unsigned spared = 0, unsigned times = ~0u) {
        support::StdoutCapture capture;
        support::ExactBlock block(chunk);
        int result = -1;
        const std::string message =
            message_of([&] { result = parser.rsltParse(block.data(), block.size()); }, smallest,
                       spared, times);
        output = capture.take();
        return result != -1 ? std::to_string(result) : message;
    }

    void expect_next_cue_is_read() {
        EXPECT_EQ(feed(block_at(1, "next")), 0);
        EXPECT_EQ(texts(), Texts{"next\n"});
    }
};

TEST_F(AllocationFailure, CollectedLine) {
    support::ExactBlock chunk(kLong + "\nrest");
    parser.vSetParsingBuffer(chunk.data(), chunk.size());
    char* line = nullptr;
    std::string message;
    EXPECT_EQ(support::output_of(
                  [&] { message = message_of([&] { parser.fgCollectLine(&line); }, kLarge); }),
              error_line("Alloc 5001 B memory failed"));
    EXPECT_EQ(message, "Operator new failed");
    EXPECT_EQ(line, nullptr);
    ASSERT_TRUE(parser.fgCollectLine(&line));  // nothing was consumed
    EXPECT_EQ(line, kLong + "\n");
    parser.vDestoryLine(&line);
}

TEST_F(AllocationFailure, CarriedText) {
    support::ExactBlock chunk(kLong);
    parser.vSetParsingBuffer(chunk.data(), chunk.size());
    EXPECT_EQ(message_of([&] { parser.fgSaveUnusedBuffer(nullptr); }, kLarge),
              "Create Unused Buffer failed");
    parser.vSetParsingBuffer(nullptr, 0);
    EXPECT_EQ(message_of([&] { parser.fgSaveUnusedBuffer(kLong.c_str()); }, kLarge),
              "Create Unused Buffer failed");
    EXPECT_FALSE(parser.fgSaveUnusedBuffer(nullptr));
}

TEST_F(AllocationFailure, SignatureLineLeavesTheParserAsItWas) {
    const std::string chunk = "WEBVTT " + kLong + "\n\n";
    EXPECT_EQ(feed_failing(chunk), "Operator new failed");
    expect_errors({"Alloc 5008 B memory failed"});
    EXPECT_EQ(feed(chunk), 0);
}

TEST_F(AllocationFailure, HeaderLineEndsTheHeaderSection) {
    EXPECT_EQ(feed("WEBVTT\n"), 1);
    EXPECT_EQ(feed_failing(kLong + "\n"), "2");
    expect_errors(
        {"Alloc 5001 B memory failed", "Parse Meta Header Failed, ignore and continue parse"});
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, HeaderLineEndsTheHeaderSectionWithNoMemoryAtAll) {
    EXPECT_EQ(feed("WEBVTT\n"), 1);
    EXPECT_EQ(feed_failing("x\n", 1), "2");
    expect_errors(
        {"Alloc 2 B memory failed", "Parse Meta Header Failed, ignore and continue parse"});
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, HeaderTextEndsTheHeaderSection) {
    EXPECT_EQ(feed("WEBVTT\n"), 1);
    EXPECT_EQ(feed_failing(kLong + "\n", kLarge, 1), "2");  // the line itself is spared
    expect_errors({"Buffer Exhausted", "pcDataBuffer == NULL after new",
                   "Parse Meta Header Failed, ignore and continue parse"});
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, TailOfAHeaderLineLeavesTheParser) {
    EXPECT_EQ(feed("WEBVTT\n"), 1);
    EXPECT_EQ(feed_failing(kLong), "Create Unused Buffer failed");
    EXPECT_EQ(feed("\n"), 0);  // nothing is carried, so this is a blank line
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, LineOfACueLosesTheChunkButNotTheCarriedText) {
    start_cues();
    EXPECT_EQ(feed(kTiming + "carried"), 0);
    EXPECT_EQ(feed_failing(" lost\nlost\n" + kLong + "\nlost\n\n"), "2");
    expect_errors({"Alloc 5001 B memory failed", "return result 2"});
    EXPECT_EQ(feed(" on\n\n"), 0);
    EXPECT_EQ(texts(), Texts{"carried on\n"});
}

TEST_F(AllocationFailure, LineOfACueWithNothingCarried) {
    start_cues();
    // Lines that end in CR LF are copied, where others may be borrowed from the chunk.
    EXPECT_EQ(feed_failing("lost\r\n" + kLong + "\r\n"), "2");
    expect_errors({"Alloc 5001 B memory failed", "return result 2"});
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, LinesThatFindNoRoomTogetherFindItOneByOne) {
    start_cues();
    const std::string line(600, 'x');
    std::string block = "00:01.000 --> 00:02.000\r\n";
    std::string first_nine;
    for (int i = 0; i != 30; ++i) {
        block += line + "\r\n";
        first_nine += i < 9 ? line + "\n" : "";
    }
    // What is behind the first ten lines is no cue, and no more lines are found together than fit.
    EXPECT_EQ(feed_failing(block + "\r\n", kLarge, 0, 1), "0");
    EXPECT_EQ(texts(), Texts{first_nine});
}

TEST_F(AllocationFailure, TailOfABlockLosesTheBlock) {
    start_cues();
    EXPECT_EQ(feed_failing(block_at(1, "kept") + kTiming + kLong), "2");
    expect_errors({"out of memory"});
    EXPECT_EQ(texts(), Texts{"kept\n"});
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, RecordIsNotQueued) {
    start_cues();
    Cue cue;
    ASSERT_TRUE(cue.fgParse("00:01.000 --> 00:02.000\nx", 1));
    EXPECT_EQ(message_of([&] { parser.vAppendNewCue(&cue); }, sizeof(WebvttCueNode)),
              "Create WebvttCue Node failed");
    EXPECT_EQ(parser.prGetParseResult()->prNext, nullptr);
    EXPECT_EQ(feed_failing(block_at(2, "lost") + block_at(3, "lost"), sizeof(WebvttCueNode)), "2");
    expect_errors({"out of memory"});
    EXPECT_EQ(texts(), Texts{});
    expect_next_cue_is_read();
}

TEST_F(AllocationFailure, RecordOfALongTextIsNotQueued) {
    start_cues();
    EXPECT_EQ(feed_failing(block_at(1, "kept") + block_at(2, kLong) + block_at(3, "lost")), "2");
    expect_errors({"out of memory"});
    EXPECT_EQ(texts(), Texts{"kept\n"});
    expect_next_cue_is_read();
}

TEST(AllocationFailureRecord, LeavesNothingBehind) {
    const long before = support::live_blocks();
    EXPECT_EQ(message_of([] { const WebvttCueNode node("auxiliary", kLong.c_str()); }, kLarge),
              "the standard error");
    EXPECT_EQ(message_of([] { const WebvttCue cue(kLong.c_str(), kLong.c_str()); }, kLarge, 1),
              "the standard error");
    EXPECT_EQ(support::live_blocks(), before);
}

TEST_F(AllocationFailure, PayloadNodes) {
    const long before = support::live_blocks();
    const auto parse_payload = [](const char* payload, unsigned spared) {
        Cue cue;
        return message_of(
            [&] { cue.fgParseCuePayload(payload, static_cast<unsigned>(std::strlen(payload))); }, 1,
            spared, 1);
    };
    EXPECT_EQ(parse_payload("x", 0), "create new WebvttNode Instance Failed");
    for (const char* payload :
         {"x", "<b>x", "<i>x", "<u>x", "<c>x", "<v>x", "<ruby>x", "<rt>x", "<00:01.000>x"}) {
        EXPECT_EQ(parse_payload(payload, 1), "create new Node Failed\n") << payload;
    }
    EXPECT_EQ(parse_payload("<lang>x", 1), "the standard error");  // the list of languages
    EXPECT_EQ(parse_payload("<lang>x", 2), "create new Node Failed\n");
    EXPECT_EQ(parse_payload("x", 2), "the standard error");  // the root's list of children
    EXPECT_EQ(support::live_blocks(), before);
}

TEST(AllocationFailureCreate, StoresZeroAndRegistersNothing) {
    const long before = support::live_blocks();
    unsigned spared = 0;
    for (;; ++spared) {
        unsigned int handle = 77;
        int result = -1;
        {
            const FailingNew failing(1, spared, 1);
            result = IZorWebVtt_Parser_Create(&handle);
        }
        if (result == 0) {
            IZorWebVtt_Parser_Release(handle);
            break;
        }
        EXPECT_EQ(result, 2);
        EXPECT_EQ(handle, 0u);
        EXPECT_FALSE(HandleRegistry::fgIsLive(0));
        EXPECT_EQ(support::live_blocks(), before);
    }
    EXPECT_GE(spared, 2u);  // at least the parser and its place in the registry
    EXPECT_EQ(support::live_blocks(), before);
}

TEST(AllocationFailureBlockBuffer, LeavesTheTextAsBefore) {
    const std::string chunk = kLong + "\r\n";
    const std::string_view text(chunk.data(), kLong.size());
    const ChunkLines long_line{
        text, text, chunk.size(), 1, false, false, false, false, {text.data() + text.size()}};
    BlockBuffer buffer;
    {
        const FailingNew failing(1);
        EXPECT_FALSE(buffer.fgAppendText(""));
        EXPECT_FALSE(buffer.fgAppendLines(long_line));
    }
    EXPECT_TRUE(buffer.fgIsEmpty());
    EXPECT_EQ(buffer.uLineFeeds(), 0u);
    ASSERT_TRUE(buffer.fgAppendText("one\n"));
    {
        const FailingNew failing(1);
        EXPECT_TRUE(buffer.fgAppendText("two"));  // there is room for that
        EXPECT_FALSE(buffer.fgAppendText(chunk));
        EXPECT_FALSE(buffer.fgAppendLines(long_line));
    }
    EXPECT_STREQ(buffer.pcOwned(), "one\ntwo");
    EXPECT_EQ(buffer.strText(), "one\ntwo");
    EXPECT_EQ(buffer.uLineFeeds(), 1u);
}

TEST(AllocationFailureBlockBuffer, LeavesBorrowedTextAsBefore) {
    const std::string chunk = "one\n";
    BlockBuffer buffer;
    const std::string_view text(chunk.data(), 3);
    ASSERT_TRUE(buffer.fgAppendLines(
        {text, text, 4, 1, false, false, true, false, {text.data() + text.size()}}));
    {
        const FailingNew failing(1);
        EXPECT_FALSE(buffer.fgAppendText("two"));
    }
    EXPECT_EQ(buffer.strText(), "one\n");
    EXPECT_EQ(buffer.uLineFeeds(), 1u);
    ASSERT_TRUE(buffer.fgAppendText("two"));
    EXPECT_EQ(buffer.strText(), "one\ntwo");
}

TEST(AllocationFailureArena, GivesNullAndGoesOn) {
    const long before = support::live_blocks();
    {
        RecordArena arena;
        {
            const FailingNew failing(1);
            EXPECT_EQ(arena.pvTake(8), nullptr);
            EXPECT_EQ(arena.pvTake(100000), nullptr);
        }
        EXPECT_NE(arena.pvTake(8), nullptr);
        {
            const FailingNew failing(1);
            EXPECT_NE(arena.pvTake(8), nullptr);  // out of what it has
            EXPECT_EQ(arena.pvTake(100000), nullptr);
            EXPECT_NE(arena.pvTake(8), nullptr);
        }
    }
    EXPECT_EQ(support::live_blocks(), before);
}

}  // namespace
}  // namespace webvtt
