// What the guard keeps of a host: blocks, handles, calls in progress, deliveries.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "guard/block_tracker.h"
#include "guard/calls_in_progress.h"
#include "guard/delivery_layout.h"
#include "guard/delivery_pages.h"
#include "guard/parser_table.h"

namespace guard {
namespace {

struct TrackedTrack {
    std::string_view chunks;  ///< with "|" between them
    bool is_unfinished;
    bool has_cues;
};

void feed(BlockTracker& tracker, std::string_view chunks) {
    while (!chunks.empty()) {
        const std::size_t length = std::min(chunks.find('|'), chunks.size());
        tracker.feed(chunks.substr(0, length));
        chunks.remove_prefix(std::min(length + 1, chunks.size()));
    }
}

class Blocks : public testing::TestWithParam<TrackedTrack> {};

TEST_P(Blocks, AreFollowedAcrossChunks) {
    BlockTracker tracker;
    feed(tracker, GetParam().chunks);
    EXPECT_EQ(GetParam().is_unfinished, tracker.is_unfinished());
    EXPECT_EQ(GetParam().has_cues, tracker.has_cues());
}

INSTANTIATE_TEST_SUITE_P(Of, Blocks,
                         testing::ValuesIn(std::vector<TrackedTrack>{
                             {"", false, false},
                             {"\n\n", false, false},
                             {"a", true, false},
                             {"a\n", true, false},
                             {"a\r\n", true, false},
                             {"a\n\n", false, false},
                             {"a\r\n\r\n", false, false},
                             {"a\r\r", false, false},
                             {"a\n\nb", true, false},
                             {"a|\n|\n", false, false},
                             {"a|\n\n", false, false},
                             {"a\n|\n", false, false},
                             {"a\r|\n", true, false},
                             {"a\r|\n|\n", false, false},
                             {"a\r\n|b", true, false},
                             {"0 --> 1\nx", true, false},
                             {"0 --> 1\nx\n\n", false, true},
                             {"0 --> 1\r\nx\r\n\r\n", false, true},
                             {"0 --> 1\nx\n|\n", false, true},
                             {"0 --> 1\nx|\n\n", false, true},
                             {"0 --> 1|\nx|y\n\n", false, true},
                             {"0 --> 1\nx\n\n0 --> 1\ny", true, true},
                             {"0 --> 1\nx|\n\n0 --> 1\ny", true, true},
                             {"NOTE\nx\n\n", false, false},
                         }));

TEST(LostBlocks, AreNotWaitedFor) {
    BlockTracker tracker;
    feed(tracker, "0 --> 1\nx");
    tracker.lose_rest();
    EXPECT_FALSE(tracker.is_unfinished());
    feed(tracker, "y\n\n");
    EXPECT_FALSE(tracker.has_cues());
}

TEST(TakenCues, AreGone) {
    BlockTracker tracker;
    feed(tracker, "0 --> 1\nx\n\n");
    tracker.take();
    EXPECT_FALSE(tracker.has_cues());
    feed(tracker, "0 --> 1\nx\n\n");
    EXPECT_TRUE(tracker.has_cues());
}

TEST(Handles, AreNeverGivenTwice) {
    ParserTable parsers;
    const unsigned first = parsers.add(0x1000)->handle;
    parsers.remove(*parsers.find(first), 7);
    const unsigned second = parsers.add(0x1000)->handle;
    EXPECT_NE(first, second);
    EXPECT_EQ(nullptr, parsers.find(first));
    EXPECT_TRUE(parsers.was_given(first));
    EXPECT_EQ(7U, parsers.find_released(first)->call);
    EXPECT_EQ(parsers.find(second), parsers.find_inner(parsers.find_released(first)->inner));
}

TEST(Handles, ThatWereNotGivenAreKnown) {
    ParserTable parsers;
    const unsigned handle = parsers.add(0x1000)->handle;
    for (const unsigned stray : {0U, 1U, handle - 1, handle + 1, handle + 16, handle - 16, ~0U}) {
        EXPECT_FALSE(parsers.was_given(stray)) << stray;
        EXPECT_EQ(nullptr, parsers.find_released(stray)) << stray;
    }
}

TEST(Handles, AreRememberedWithinLimits) {
    ParserTable parsers;
    const unsigned first = parsers.add(0x1000)->handle;
    for (unsigned i = 0; i < 300; ++i) {
        parsers.remove(parsers.live().back(), i);
        parsers.add(0x1000);
    }
    EXPECT_TRUE(parsers.was_given(first));
    EXPECT_EQ(nullptr, parsers.find_released(first));
}

Call begun(Function function, unsigned long number, long thread, std::uintptr_t frame) {
    Call call(function);
    call.number = number;
    call.thread = thread;
    call.frame = reinterpret_cast<const void*>(frame);
    return call;
}

TEST(Calls, ThatWereJumpedOutOfAreForgotten) {
    CallsInProgress calls;
    Parser parser;
    parser.calls = 1;
    Call left = begun(Function::kGetParseResult, 1, 10, 0x1000);
    left.parser = &parser;
    calls.add(left);
    calls.add(begun(Function::kParse, 2, 11, 0x1000));
    calls.drop_left(10, reinterpret_cast<const void*>(0x0F00));
    EXPECT_NE(nullptr, calls.latest_of(10));  // the next call lies deeper: within the first
    calls.drop_left(10, reinterpret_cast<const void*>(0x1000));
    EXPECT_EQ(nullptr, calls.latest_of(10));
    EXPECT_EQ(0U, parser.calls);
    EXPECT_NE(nullptr, calls.latest_of(11));
}

TEST(Calls, OfOtherThreadsEndWithAFork) {
    CallsInProgress calls;
    calls.add(begun(Function::kParse, 1, 10, 0x1000));
    calls.add(begun(Function::kParse, 2, 11, 0x1000));
    calls.keep_only(11, 12);
    EXPECT_EQ(1, calls.end() - calls.begin());
    EXPECT_EQ(2U, calls.latest_of(12)->number);
}

TEST(Calls, BeyondTheRoomAreNotWatched) {
    CallsInProgress calls;
    for (unsigned long i = 1; i <= 100; ++i) {
        calls.add(begun(Function::kParse, i, static_cast<long>(i), 0x1000));
    }
    for (unsigned long i = 1; i <= 100; ++i) {
        calls.remove(begun(Function::kParse, i, static_cast<long>(i), 0x1000));
    }
    EXPECT_EQ(calls.begin(), calls.end());
}

/// A list of cues, as the module delivers it.
struct Delivery {
    explicit Delivery(const std::vector<std::string>& given) : texts(given), cues(given.size()) {
        for (std::size_t i = 0; i < cues.size(); ++i) {
            cues[i] = {};
            cues[i].pcText = texts[i].data();
            cues[i].dStartTime = static_cast<double>(i);
            cues[i].prNext = i + 1 < cues.size() ? &cues[i + 1] : nullptr;
        }
        info = {cues.empty() ? nullptr : cues.data(), static_cast<uint32_t>(cues.size()), 0};
    }
    std::vector<std::string> texts;
    std::vector<WebvttCueNode> cues;
    WebvttDataInfo info;
};

class Pages : public testing::Test {
  protected:
    void SetUp() override { m_pages.open(); }
    void TearDown() override { m_pages.close(); }

    DeliveryPages m_pages;
};

TEST_F(Pages, HoldACopyOfAllThatIsDelivered) {
    const Delivery delivery({"one\n", "", std::string(5000, 'x')});
    const HandedOut copy(m_pages, delivery.info, 1, 1);
    ASSERT_NE(nullptr, copy.info());
    EXPECT_EQ(3U, copy.info()->u4CueCount);
    std::size_t number = 0;
    for (const auto* cue = copy.info()->prCueList; cue != nullptr; cue = cue->prNext, ++number) {
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(cue) % 8);
        EXPECT_EQ(delivery.texts[number], cue->pcText);
        EXPECT_EQ(nullptr, cue->pcAuxText);
        EXPECT_EQ(static_cast<double>(number), cue->dStartTime);
    }
    EXPECT_EQ(3U, number);
}

TEST_F(Pages, SayWhereAnAddressLies) {
    const Delivery delivery({"one\n", "two\n"});
    const HandedOut copy(m_pages, delivery.info, 5, 7);
    const WebvttCueNode* const first = copy.info()->prCueList;
    const std::vector<std::pair<const void*, std::string>> places = {
        {&copy.info()->u4CueCount, "info block, field u4CueCount"},
        {first, "record 1 of 2, field pcAuxText"},
        {&first->dEndTime, "record 1 of 2, field dEndTime"},
        {&first->prNext->fgSnapToLines, "record 2 of 2, field fgSnapToLines"},
        {&first->prNext->prNext, "record 2 of 2, field prNext"},
        {first->pcText - 4, "record 1 of 2, field pcText, the text"},
        {first->prNext->pcText + 2, "record 2 of 2, field pcText, the text"},
    };
    for (const auto& [address, words] : places) {
        const DeliveredPages* const pages = m_pages.find(address);
        ASSERT_NE(nullptr, pages) << words;
        EXPECT_EQ(5U, pages->call);
        EXPECT_EQ(7U, pages->parser);
        Detail detail;
        describe_place(pages->content, pages->begin, static_cast<const char*>(address), detail);
        EXPECT_EQ(words, detail.c_str());
    }
    EXPECT_EQ(nullptr, m_pages.find(&delivery));
}

TEST_F(Pages, OfOlderDeliveriesAreUsedAgain) {
    const Delivery small({"one\n"});
    const Delivery large({std::string(100000, 'x')});
    const Delivery larger({std::string(1000000, 'x')});
    for (int i = 0; i < 2000; ++i) {
        const Delivery& delivery = i % 100 == 50 ? large : i % 100 == 99 ? larger : small;
        const HandedOut copy(m_pages, delivery.info, 1, 1);
        ASSERT_NE(nullptr, copy.info());
        EXPECT_EQ(delivery.texts[0], copy.info()->prCueList->pcText);
    }
}

TEST_F(Pages, ThatAreInUseAreLeftAlone) {
    const Delivery delivery({"kept\n"});
    const Delivery other({"other\n"});
    const HandedOut kept(m_pages, delivery.info, 1, 1);
    for (int i = 0; i < 255; ++i) {
        const HandedOut copy(m_pages, other.info, 1, 1);
        ASSERT_NE(nullptr, copy.info());
    }
    EXPECT_STREQ("kept\n", kept.info()->prCueList->pcText);
}

TEST_F(Pages, AreNotTakenForAListWithoutEnd) {
    Delivery delivery({"one\n", "two\n"});
    delivery.cues[1].prNext = delivery.cues.data();
    EXPECT_EQ(nullptr, HandedOut(m_pages, delivery.info, 1, 1).info());
}

TEST_F(Pages, AreNotNeededForNothing) {
    const Delivery delivery({});
    const HandedOut copy(m_pages, delivery.info, 1, 1);
    ASSERT_NE(nullptr, copy.info());
    EXPECT_EQ(nullptr, copy.info()->prCueList);
    EXPECT_EQ(0U, copy.info()->u4CueCount);
}

}  // namespace
}  // namespace guard
