// Records and their delivery: times, settings, the queue, the callback.
#include <gtest/gtest.h>

#include <string>

#include "cue/cue.h"
#include "parser_fixture.h"

namespace webvtt {
namespace {

class CueDelivery : public ParserTest {
  protected:
    void start_with_map(const std::string& items) {
        ASSERT_EQ(feed("WEBVTT\nX-TIMESTAMP-MAP=" + items + "\n\n"), 0);
    }

    /// The one cue of a block.
    support::CueRecord cue_of(const std::string& block) {
        EXPECT_EQ(feed(block), 0);
        const auto delivered = cues();
        EXPECT_EQ(delivered.size(), 1u) << block;
        return delivered.at(0);
    }

    void expect_times(double start, double end) {
        const auto cue = cue_of("00:01.500 --> 00:03.000\nx\n\n");
        EXPECT_EQ(cue.start, start);
        EXPECT_EQ(cue.end, end);
    }
};

// With a tree, without one, and with the text only.
TEST_F(CueDelivery, TakesCuesThatWereParsedByThemselves) {
    start_cues();
    Cue cue;
    ASSERT_TRUE(cue.fgParse("00:01.500 --> 00:03.000\n<b>x</b>\n", 1));
    parser.vAppendNewCue(&cue);
    const Cue empty;
    parser.vAppendNewCue(&empty);
    Cue plain;
    ASSERT_EQ(plain.eParseForText("00:01.500 --> 00:03.000\ny\n", nullptr), Outcome::kDone);
    parser.vAppendNewCue(&plain);
    const auto delivered = cues();
    ASSERT_EQ(delivered.size(), 3u);
    EXPECT_EQ(delivered[0].text, "x\n");
    EXPECT_EQ(delivered[0].start, 1.5);
    EXPECT_EQ(delivered[1].text, "");
    EXPECT_EQ(delivered[2].text, "y\n");
}

TEST_F(CueDelivery, TimesWithoutAMap) {
    start_cues();
    expect_times(1.5, 3.0);
}

TEST_F(CueDelivery, TimesWithAMap) {
    start_with_map("MPEGTS:900000,LOCAL:00:00:00.000");
    expect_times(11.5, 13.0);
}

TEST_F(CueDelivery, LocalTimeIsSubtracted) {
    start_with_map("LOCAL:00:00:04.500,MPEGTS:900000");
    expect_times(7.0, 8.5);
}

TEST_F(CueDelivery, OffsetMayBeNegative) {
    start_with_map("LOCAL:01:00:00.000,MPEGTS:0");
    expect_times(-3598.5, -3597.0);
}

TEST_F(CueDelivery, MapCountsWholeSecondsOnly) {
    start_with_map("MPEGTS:135000,LOCAL:00:00:00.000");
    expect_times(2.5, 4.0);
}

TEST_F(CueDelivery, MapTicksAreUnsigned) {
    start_with_map("MPEGTS:4294967294,LOCAL:00:00:00.000");
    expect_times(47722.5, 47724.0);
}

TEST_F(CueDelivery, MapWithAnUnsetFieldDoesNotShift) {
    start_with_map("MPEGTS:900000,MPEGTS:900000");
    expect_times(1.5, 3.0);
}

TEST_F(CueDelivery, VideoTimeIsSubtracted) {
    start_cues();
    parser.vSetVideoPTS(180000);
    expect_times(-0.5, 1.0);
    parser.vSetVideoPTS(89999);  // whole seconds only
    expect_times(1.5, 3.0);
    parser.vSetVideoPTS(90000);
    expect_times(0.5, 2.0);
    parser.vSetVideoPTS(4294967295UL);
    expect_times(1.5 - 47721, 3.0 - 47721);
    parser.vSetVideoPTS(0);
    expect_times(1.5, 3.0);
}

TEST_F(CueDelivery, VideoTimeCountsFromTheNextCueOn) {
    start_cues();
    EXPECT_EQ(feed(block_at(3, "queued")), 0);
    parser.vSetVideoPTS(180000);
    EXPECT_EQ(feed(block_at(4, "later")), 0);
    const auto delivered = cues();
    ASSERT_EQ(delivered.size(), 2u);
    EXPECT_EQ(delivered[0].start, 3.0);
    EXPECT_EQ(delivered[1].start, 2.0);
}

// The order of additions shows in the last bit.
TEST_F(CueDelivery, OffsetIsAddedBeforeTheVideoTimeIsSubtracted) {
    start_with_map("MPEGTS:900000,LOCAL:00:00.100");
    parser.vSetVideoPTS(450000);
    const auto cue = cue_of("00:02.700 --> 00:03.300\nx\n\n");
    const double offset = 10.0 - 0.1;
    ASSERT_NE((offset + 2.7) - 5.0, offset + (2.7 - 5.0));
    EXPECT_EQ(cue.start, (offset + 2.7) - 5.0);
    EXPECT_EQ(cue.end, (offset + 3.3) - 5.0);
}

TEST_F(CueDelivery, SettingsOfTheRecord) {
    const std::string zeros(31, '0');
    const struct {
        std::string settings;
        int line;
        unsigned snap, position, size;
        int align, vertical;
    } cases[] = {
        {"", 100, 1, 50, 100, 1, 0},
        {"line:-1", -1, 1, 50, 100, 1, 0},
        {"line:2.9", 2, 1, 50, 100, 1, 0},
        {"line:-2.9", -2, 1, 50, 100, 1, 0},
        {"line:50%", 50, 0, 50, 100, 1, 0},
        {"line:99.9%,end", 99, 0, 50, 100, 1, 0},
        {"line:2147483647", 2147483647, 1, 50, 100, 1, 0},
        {"line:3000000000", -1294967296, 1, 50, 100, 1, 0},
        {"line:-2147483648", 2147483647, 1, 50, 100, 1, 0},  // -(-2^31), saturated
        {"position:30.7%", 100, 1, 30, 100, 1, 0},
        {"position:100%", 100, 1, 100, 100, 1, 0},
        {"size:33.9%", 100, 1, 50, 33, 1, 0},
        {"size:150%", 100, 1, 50, 150, 1, 0},
        {"size:300%", 100, 1, 50, 44, 1, 0},
        {"size:256%", 100, 1, 50, 0, 1, 0},
        {"size:3000000000%", 100, 1, 50, 0, 1, 0},  // negative
        {"align:start", 100, 1, 0, 100, 0, 0},
        {"align:end", 100, 1, 100, 100, 2, 0},
        {"align:left", 100, 1, 0, 100, 3, 0},
        {"align:right", 100, 1, 100, 100, 4, 0},
        {"vertical:lr", 100, 1, 50, 100, 1, 1},
        {"vertical:rl", 100, 1, 50, 100, 1, 2},
        {"region:fred line:0%", 0, 0, 50, 100, 1, 0},
        // The 32nd fractional digit is divided by zero.
        {"size:1." + zeros + "1%", 100, 1, 50, 255, 1, 0},
        {"size:1." + zeros + "0%", 100, 1, 50, 0, 1, 0},
        {"position:1." + zeros + "1%", 100, 1, 50, 100, 1, 0},  // infinity is out of range
        {"position:1." + zeros + "0%", 100, 1, 0, 100, 1, 0},   // what is not a number is not
        {"line:1." + zeros + "1", 2147483647, 1, 50, 100, 1, 0},
        {"line:-1." + zeros + "1", -2147483647 - 1, 1, 50, 100, 1, 0},
        {"line:1." + zeros + "0", 0, 1, 50, 100, 1, 0},
        {"line:1." + zeros + "0%", 0, 0, 50, 100, 1, 0},
    };
    start_cues();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        const auto cue = cue_of("00:01.000 --> 00:02.000 " + c.settings + "\nx\n\n");
        EXPECT_FALSE(cue.has_aux_text);
        EXPECT_EQ(cue.line, c.line);
        EXPECT_EQ(cue.reserved, 0u);
        EXPECT_EQ(cue.snap_to_lines, c.snap);
        EXPECT_EQ(cue.position, c.position);
        EXPECT_EQ(cue.size, c.size);
        EXPECT_EQ(cue.text_align, c.align);
        EXPECT_EQ(cue.vertical, c.vertical);
    }
}

TEST_F(CueDelivery, TextIsThePlainText) {
    start_cues();
    EXPECT_EQ(cue_of("00:01.000 --> 00:02.000\n<v Bob>a &lt; b</v>\n<i>c</i>\n\n").text,
              "a < b\nc\n");
}

TEST_F(CueDelivery, EmptyTextIsNotNull) {
    start_cues();
    parser.vSetParsingBuffer(nullptr, 0);
    ASSERT_TRUE(parser.fgSaveUnusedBuffer("00:01.000 --> 00:02.000\n<i></i>"));
    const auto cue = cue_of(std::string("\0\n\n", 3));
    EXPECT_TRUE(cue.has_text);
    EXPECT_EQ(cue.text, "");
}

TEST_F(CueDelivery, QueueIsDeliveredOnceInTrackOrder) {
    start_cues();
    EXPECT_EQ(feed(block_at(1, "one") + block_at(2, "two")), 0);
    EXPECT_EQ(feed(block_at(3, "three")), 0);
    EXPECT_EQ(texts(), (Texts{"one\n", "two\n", "three\n"}));
    EXPECT_EQ(texts(), Texts{});
    EXPECT_EQ(feed(block_at(4, "four")), 0);
    EXPECT_EQ(texts(), Texts{"four\n"});
}

TEST_F(CueDelivery, EmptyQueueIsDeliveredToo) {
    parser.vGetParseResult();
    ASSERT_EQ(deliveries.size(), 1u);
    EXPECT_EQ(deliveries[0].count, 0u);
    EXPECT_EQ(deliveries[0].reserved, 0u);
    EXPECT_TRUE(deliveries[0].cues.empty());
}

TEST_F(CueDelivery, DeliveryPrintsNothing) {
    start_cues();
    EXPECT_EQ(feed(block_at(1, "x")), 0);
    EXPECT_EQ(support::output_of([&] { parser.vGetParseResult(); }), "");
}

TEST_F(CueDelivery, HeadOfTheQueueIsASentinel) {
    const WebvttCueNode* const head = parser.prGetParseResult();
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head->prNext, nullptr);
    EXPECT_EQ(head->pcText, nullptr);
    EXPECT_EQ(head->i4Line, -1);
    start_cues();
    EXPECT_EQ(feed(block_at(1, "x")), 0);
    EXPECT_EQ(parser.prGetParseResult(), head);
    ASSERT_NE(head->prNext, nullptr);
    EXPECT_STREQ(head->prNext->pcText, "x\n");
    EXPECT_EQ(texts(), Texts{"x\n"});
    EXPECT_EQ(head->prNext, nullptr);
}

// ---- The callback ----

struct Call {
    int event;
    void* tag;
};

void note_call(WEBVTT_EVENT_T eEvent, void* pvTag, void* /*pvInfo*/) {
    static_cast<std::vector<Call>*>(pvTag)->push_back({eEvent, pvTag});
}

void must_not_be_called(WEBVTT_EVENT_T /*eEvent*/, void* /*pvTag*/, void* /*pvInfo*/) {
    FAIL();
}

TEST(CueCallback, GetsEventAndTag) {
    WebVTTParser parser;
    std::vector<Call> calls;
    parser.vSetWebvttEventNty(&calls, note_call);
    parser.vGetParseResult();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].event, 0);
    EXPECT_EQ(calls[0].tag, &calls);
}

TEST(CueCallback, NullFunctionKeepsTheEarlierOneAndItsTag) {
    WebVTTParser parser;
    std::vector<Call> calls;
    std::vector<Call> others;
    parser.vSetWebvttEventNty(&calls, note_call);
    parser.vSetWebvttEventNty(&others, nullptr);
    parser.vGetParseResult();
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_TRUE(others.empty());
}

TEST(CueCallback, IsReplacedWithItsTag) {
    WebVTTParser parser;
    std::vector<Call> calls;
    parser.vSetWebvttEventNty(nullptr, must_not_be_called);
    parser.vSetWebvttEventNty(&calls, note_call);
    parser.vGetParseResult();
    EXPECT_EQ(calls.size(), 1u);
}

TEST_F(CueDelivery, CuesFedFromTheCallbackAreFreedUndelivered) {
    start_cues();
    EXPECT_EQ(feed(block_at(1, "one")), 0);
    WebVTTParser* const feeding = &parser;
    parser.vSetWebvttEventNty(feeding, [](WEBVTT_EVENT_T, void* tag, void*) {
        const std::string block = block_at(2, "two");
        support::output_of([&] {
            static_cast<WebVTTParser*>(tag)->rsltParse(block.data(),
                                                       static_cast<unsigned>(block.size()));
        });
    });
    parser.vGetParseResult();
    EXPECT_EQ(parser.prGetParseResult()->prNext, nullptr);
    EXPECT_EQ(feed(block_at(3, "three")), 0);  // the tail of the queue is in place again
    ASSERT_NE(parser.prGetParseResult()->prNext, nullptr);
    EXPECT_STREQ(parser.prGetParseResult()->prNext->pcText, "three\n");
}

}  // namespace
}  // namespace webvtt
