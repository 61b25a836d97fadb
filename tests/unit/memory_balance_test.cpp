// All memory that a parser takes comes back, also when any one allocation fails.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "parser/webvtt_parser.h"
#include "support/exact_block.h"
#include "support/memory.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

// Headers, carried text in every state, all markup, errors, and records that are not delivered.
const char* const kChunks[] = {
    "WEBVTT with a title that is longer than a string's own buffer\n",
    "Region: id=a lines=3 width=40% regionanchor=1%,2%\nX-TIMESTAMP-MAP=MPEGTS:90",
    "0000,LOCAL:00:00:00.000\nRegion: lines=x\n\nan identifier that is long enough\n00:01",
    ".000 --> 00:02.000 align:end line:50%,end region:longer-than-sixteen-bytes\n<v.loud Bob>a",
    " longer payload &amp; more</v> <lang en><b><i>x</i></b></lang>\n<ruby>y<rt>z</rt></ruby>\n\n",
    "00:02.000 --> 00:03.000 size:x%\na<00:02.500>b</unknown-end-tag>\n\nbad --> 00:04.000\nx\n\n",
    "00:05.000 --> 00:06.000\n<c.one.two.three.of.many.classes>text that needs the heap</c>\n\n",
    "00:06.000 --> 00:07.000\n<00:06.500.with.much.behind>a</an-end-tag-that-nobody-knows>b\n"
    "<99:99:99.999.and.no.time>c</another-end-tag-that-nobody-knows>d<v.a-class.that-is-long "
    "Bob>\n\n",
    "00:07.000 --> bad\nx\n\n00:08.000 --> 00:09.000\n<unknown-start-tag>x\n\n",
    "00:10.000 --> 00:11.000\nundelivered\n\n00:12.000 --> 00:13.000\nunfinished",
};
constexpr std::size_t kDelivered = 7;  // asks for the result behind this many chunks

/// Plays the track with the allocation behind the spared ones failing. Gives whether one failed.
bool play(unsigned spared) {
    bool reported = false;
    support::StdoutCapture capture;
    auto parser = std::make_unique<WebVTTParser>();
    parser->vSetWebvttEventNty(nullptr, [](WEBVTT_EVENT_T, void*, void*) {});
    std::vector<std::unique_ptr<support::ExactBlock>> blocks;
    for (const char* chunk : kChunks) {
        blocks.push_back(std::make_unique<support::ExactBlock>(chunk));
    }
    const support::FailingNew failing(1, spared, 1);
    for (std::size_t index = 0; index < blocks.size(); ++index) {
        const unsigned failures = failing.failures();
        bool lost = false;
        try {
            lost = parser->rsltParse(blocks[index]->data(), blocks[index]->size()) == 2;
        } catch (const std::bad_alloc&) {
            lost = true;
        }
        reported = reported || (lost && failing.failures() != failures);
        if (index == kDelivered) {
            parser->vGetParseResult();
        }
    }
    EXPECT_EQ(reported, failing.failures() != 0) << spared;  // never silent
    return failing.failures() != 0;
}

TEST(MemoryBalance, HoldsWhicheverAllocationFails) {
    const long before = support::live_blocks();
    unsigned spared = 0;
    while (play(spared)) {
        ASSERT_EQ(support::live_blocks(), before) << spared;
        ++spared;
    }
    EXPECT_EQ(support::live_blocks(), before);
    EXPECT_GT(spared, 20u);  // the track is rich enough to mean something
}

/// The blocks that a parser holds once the chunk and a small cue behind it are delivered.
long blocks_held_after(const std::string& chunk) {
    support::StdoutCapture capture;
    const auto parser = std::make_unique<WebVTTParser>();
    parser->vSetWebvttEventNty(nullptr, [](WEBVTT_EVENT_T, void*, void*) {});
    const long before = support::live_blocks();
    for (const std::string& text :
         {"WEBVTT\n\n" + chunk, std::string("00:01.000 --> 00:02.000\nx\n\n")}) {
        support::ExactBlock block(text);
        parser->rsltParse(block.data(), block.size());
        parser->vGetParseResult();
    }
    return support::live_blocks() - before;
}

TEST(MemoryBalance, StorageForAHugeTextWithMarkupIsGivenBack) {
    const std::string timing = "00:01.000 --> 00:02.000\n";
    const auto held_after = [&](std::size_t size) {
        return blocks_held_after(timing + "<i>" + std::string(size, 'x') + "</i>\n\n");
    };
    // Markup is joined in the block's storage, which is kept for the next block unless it is huge.
    EXPECT_EQ(held_after(2000), blocks_held_after(timing + "plain\n\n"));
    EXPECT_EQ(held_after(200000), held_after(2000) - 1);
}

// A slab that was made for one long text is too small for what an ordinary one holds.
TEST(MemoryBalance, OnlyAnOrdinarySlabIsKept) {
    const long before = support::live_blocks();
    RecordArena arena;
    ASSERT_NE(arena.pvTake(2000), nullptr);
    EXPECT_EQ(support::live_blocks(), before + 1);
    arena.vFreeAll();
    EXPECT_EQ(support::live_blocks(), before);
    ASSERT_NE(arena.pvTake(8), nullptr);
    ASSERT_NE(arena.pvTake(5000), nullptr);  // newest first: not the one that is kept
    EXPECT_EQ(support::live_blocks(), before + 2);
    arena.vFreeAll();
    EXPECT_EQ(support::live_blocks(), before + 1);
}

TEST(MemoryBalance, ADestroyedLineIsFreed) {
    support::ExactBlock chunk("one line\n");
    support::StdoutCapture capture;
    WebVTTParser parser;
    parser.vSetParsingBuffer(chunk.data(), chunk.size());
    const long with_chunk = support::live_blocks();
    char* line = nullptr;
    ASSERT_TRUE(parser.fgCollectLine(&line));
    EXPECT_EQ(support::live_blocks(), with_chunk + 1);
    parser.vDestoryLine(&line);
    EXPECT_EQ(support::live_blocks(), with_chunk);
}

}  // namespace
}  // namespace webvtt
