// Who frees what, and what memory that is too short for one line does.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/support/tracks.h"
#include "support/module.h"
#include "support/parser.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

const std::string kCue = "00:01.000 --> 00:02.000\nHello <b>world</b>, and goodbye\n\n";

class Ownership : public testing::Test {
  protected:
    static Ending feed(Parser& parser, const std::string& chunk) {
        const Quiet quiet;
        return parser.feed(chunk);
    }

    const Module m_module;
    const Methods& call = m_module.methods();
    Memory memory;
};

// The other tests here would say nothing if the module had an operator new of its own.
TEST_F(Ownership, TheModulesMemoryIsWatched) {
    Parser parser(call, memory);
    EXPECT_GT(memory.live_blocks(), 0);
    const unsigned before = memory.allocations();
    feed(parser, "WEBVTT\n\n" + kCue);
    EXPECT_GT(memory.allocations(), before);
    parser.release();
    EXPECT_EQ(memory.live_blocks(), 0);
}

TEST_F(Ownership, DeliveredRecordsAreFreedWithTheDelivery) {
    Parser parser(call, memory);
    feed(parser, "WEBVTT\n\n" + kCue);
    parser.take();
    const long before = memory.live_blocks();
    for (int i = 0; i < 1000; ++i) {
        feed(parser, kCue);
        EXPECT_EQ(parser.take().size(), 1u);
        ASSERT_EQ(memory.live_blocks(), before) << i;
    }
}

TEST_F(Ownership, UndeliveredRecordsAreFreedWithTheParser) {
    Parser parser(call, memory);
    feed(parser, "WEBVTT\n\n" + kCue);
    const long before = memory.live_blocks();
    for (int i = 0; i < 1000; ++i) {
        feed(parser, kCue);
    }
    EXPECT_GT(memory.live_blocks(), before);
    parser.release();
    EXPECT_EQ(memory.live_blocks(), 0);
}

TEST_F(Ownership, UndeliveredRecordsAreFreedBehindADeliveryToo) {
    Parser parser(call, memory);
    feed(parser, "WEBVTT\n\n" + kCue);
    EXPECT_EQ(parser.take().size(), 1u);
    feed(parser, kCue + kCue);
    parser.release();
    EXPECT_EQ(memory.live_blocks(), 0);
}

TEST_F(Ownership, WhatACallbackCompletesIsFreedUndelivered) {
    struct Host {
        const Methods& call;
        Handle handle = 0;
        unsigned cues = 0;
    } host{call};
    const Quiet quiet;
    const Memory::Use use(memory);
    ASSERT_EQ(call.create(&host.handle), 0);
    call.parse(host.handle, "WEBVTT\n\n", 8);
    call.set_callback(host.handle, &host, [](int, void* tag, void* info) {
        Host& player = *static_cast<Host*>(tag);
        player.cues += value_at<unsigned>(info, 4);
        player.call.parse(player.handle, kCue.data(), static_cast<unsigned>(kCue.size()));
    });
    call.get_result(host.handle);  // a slab is kept from now on
    const long before = memory.live_blocks();
    for (int i = 0; i < 100; ++i) {
        call.get_result(host.handle);
        ASSERT_EQ(memory.live_blocks(), before) << i;
    }
    EXPECT_EQ(host.cues, 0u);
    call.parse(host.handle, kCue.data(), static_cast<unsigned>(kCue.size()));
    call.get_result(host.handle);
    EXPECT_EQ(host.cues, 1u);
    call.release(host.handle);
    EXPECT_EQ(memory.live_blocks(), 0);
}

TEST_F(Ownership, BlocksThatFailLeaveNothing) {
    Parser parser(call, memory);
    feed(parser, "WEBVTT\n\n" + kCue);
    parser.take();
    const long before = memory.live_blocks();
    const struct {
        const char* block;
        Ending ending;
    } kBlocks[] = {
        {"an identifier\n\n", Ending::kOk},
        {"an identifier that is rather long --> 00:02.000\nx\n\n", Ending::kOk},
        {"00:01.000 --> an end time that is rather long\nx\n\n", Ending::kOk},
        {"00:01.000 --> 00:02.000\n\n", Ending::kOk},
        {"00:01.000 --> 00:02.000\n<b><i>some text <unknown>\n\n", Ending::kError},
        {"00:01.000 --> 00:02.000 line:-\nx\n\n", Ending::kOutOfRange},
        {"00:01.000 --> 00:02.000 region:a-long-region-name line:,end\nx\n\n", Ending::kOutOfRange},
    };
    for (const auto& one : kBlocks) {
        EXPECT_EQ(feed(parser, one.block), one.ending) << one.block;
        EXPECT_EQ(memory.live_blocks(), before) << one.block;
        EXPECT_EQ(parser.take().size(), 0u) << one.block;
    }
}

TEST_F(Ownership, HeadersAreFreedWithTheParserAlsoThoseThatThrew) {
    Parser parser(call, memory);
    EXPECT_EQ(feed(parser, "WEBVTT\nRegion: id=a-region-with-a-long-name width=40%\n"),
              Ending::kHeader);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(feed(parser, "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n"),
                  Ending::kHeader);
        EXPECT_EQ(feed(parser, "X-TIMESTAMP-MAP=MPEGTS:900000\n"), Ending::kOutOfRange);
        EXPECT_EQ(feed(parser, "X-TIMESTAMP-MAP\n"), Ending::kOutOfRange);
    }
    // The current map is one that threw. If it were freed, this would read freed memory.
    EXPECT_EQ(feed(parser, "\n" + kCue), Ending::kOk);
    const std::vector<CueRecord> cues = parser.take();
    ASSERT_EQ(cues.size(), 1u);
    EXPECT_EQ(cues[0].start, 1.0);
    parser.release();
    EXPECT_EQ(memory.live_blocks(), 0);
}

TEST_F(Ownership, AParserMayBeReleasedAtAnyByte) {
    const unsigned step = number_from_environment("QUILLCAPTION_SECTIONS", 1);
    for (const std::string& name : sample_names()) {
        const std::string track = sample(name);
        for (std::size_t size = 1; size < track.size(); size += step) {
            Parser parser(call, memory);
            feed(parser, track.substr(0, size));
            parser.release();
            ASSERT_EQ(memory.live_blocks(), 0) << name << " up to byte " << size;
        }
    }
}

// Texts of 120,000 bytes where blocks of 100,000 cannot be had.

const std::string kHalf(60000, 'a');

class LongTexts : public testing::Test {
  protected:
    /// Feeds a chunk when long blocks cannot be had; notes what is printed.
    Ending feed(const std::string& chunk) {
        memory.fail_from_size(100000);
        Ending ending = Ending::kUndocumented;
        printed = output_of([&] { ending = parser.feed(chunk); });
        failures = memory.failures();
        memory.fail_nothing();
        return ending;
    }

    void feed_well(const std::string& chunk, Ending ending) {
        Ending got = Ending::kUndocumented;
        output_of([&] { got = parser.feed(chunk); });
        EXPECT_EQ(got, ending);
    }

    /// The text of the only cue that a chunk completes.
    std::string text_of(const std::string& chunk) {
        feed_well(chunk, Ending::kOk);
        const std::vector<CueRecord> cues = parser.take();
        EXPECT_EQ(cues.size(), 1u);
        return cues.size() == 1 ? cues[0].text : "";
    }

    void TearDown() override {
        EXPECT_GE(failures, 1u);
        parser.release();
        EXPECT_EQ(memory.live_blocks(), 0);
    }

    const Module m_module;
    Memory memory;
    Parser parser{m_module.methods(), memory};
    std::string printed;
    unsigned failures = 0;
};

TEST_F(LongTexts, ATailInTheHeaderSectionThrows) {
    EXPECT_EQ(feed("WEBVTT\n" + kHalf + kHalf), Ending::kBadAlloc);
    EXPECT_EQ(printed, "");
    feed_well("a header\n\n", Ending::kOk);
    EXPECT_EQ(text_of("00:01.000 --> 00:02.000\nx\n\n"), "x\n");
}

TEST_F(LongTexts, AHeaderLineOfTwoChunksEndsTheHeaderSection) {
    feed_well("WEBVTT\nRegion: id=" + kHalf, Ending::kHeader);
    EXPECT_EQ(feed(kHalf + "\nlost\n\n00:01.000 --> 00:02.000\nlost\n\n"), Ending::kError);
    EXPECT_EQ(printed,
              "[WEBVTT] ERR:: pcDataBuffer == NULL after new\n"
              "[WEBVTT] ERR:: Parse Meta Header Failed, ignore and continue parse\n");
    feed_well("\n\n", Ending::kOk);
    EXPECT_EQ(text_of("00:01.000 --> 00:02.000\nx\n\n"), "x\n");
}

TEST_F(LongTexts, ATailOfACueIsOutOfMemory) {
    feed_well("WEBVTT\n\n", Ending::kOk);
    EXPECT_EQ(feed(kHalf + kHalf), Ending::kError);
    EXPECT_EQ(printed, "[WEBVTT] ERR:: out of memory\n");
    EXPECT_EQ(text_of("00:01.000 --> 00:02.000\nx\n\n"), "x\n");
}

TEST_F(LongTexts, ALineOfACueLosesItsChunk) {
    feed_well("WEBVTT\n\n00:01.000 --> 00:02.000\nfirst\n", Ending::kOk);
    EXPECT_EQ(feed("lost\n" + kHalf + kHalf + "\n\n00:01.000 --> 00:02.000\nlost\n\n"),
              Ending::kError);
    // Nothing of earlier chunks is lost.
    EXPECT_EQ(text_of("last\n\n"), "first\nlast\n");
}

TEST_F(LongTexts, ATextThatCannotBeCopiedLosesItsCue) {
    feed_well("WEBVTT\n\n00:01.000 --> 00:02.000\nfirst\n\n", Ending::kOk);
    const Ending ending = feed("00:01.000 --> 00:02.000\n" + kHalf + kHalf + "\n\n");
    EXPECT_TRUE(ending == Ending::kError || ending == Ending::kBadAlloc);
    feed_well("00:03.000 --> 00:04.000\nlast\n\n", Ending::kOk);
    const std::vector<CueRecord> cues = parser.take();
    ASSERT_EQ(cues.size(), 2u);
    EXPECT_EQ(cues[0].text, "first\n");
    EXPECT_EQ(cues[1].text, "last\n");
}

}  // namespace
}  // namespace support::host
