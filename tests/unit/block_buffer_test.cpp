// The text of a block: borrowed from its chunk while it lies there in one piece, copied otherwise.
#include "parser/block_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/exact_block.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

/// A chunk and its lines.
struct Chunk {
    explicit Chunk(std::string_view bytes) : block(bytes) {
        LineFinder finder;
        const char* begin = block.data();
        finder.start(begin + block.size());
        ChunkLines line;
        while (finder.find(begin, 1, &line)) {
            lines.push_back(line);
            begin += line.consumed;
        }
    }

    bool owns(std::string_view text) {
        return text.data() >= block.data() && text.data() < block.data() + block.size();
    }

    support::ExactBlock block;
    std::vector<ChunkLines> lines;
};

void append_lines(BlockBuffer& buffer, const Chunk& chunk) {
    for (const ChunkLines& line : chunk.lines) {
        ASSERT_TRUE(buffer.fgAppendLines(line));
    }
}

TEST(BlockBuffer, StartsEmpty) {
    BlockBuffer buffer;
    EXPECT_EQ(buffer.strText(), "");
    EXPECT_TRUE(buffer.fgIsEmpty());
    EXPECT_FALSE(buffer.fgEndsWithLineFeed());
    EXPECT_EQ(buffer.uLineFeeds(), 0u);
    buffer.vClear();
    buffer.vTruncate(0, 0);
    EXPECT_TRUE(buffer.fgIsEmpty());
}

TEST(BlockBuffer, BorrowsLinesThatFollowEachOther) {
    Chunk chunk("one\n\ntwo\n");
    BlockBuffer buffer;
    append_lines(buffer, chunk);
    EXPECT_EQ(buffer.strText(), "one\n\ntwo\n");
    EXPECT_TRUE(chunk.owns(buffer.strText()));
    EXPECT_EQ(buffer.uLineFeeds(), 3u);
    EXPECT_TRUE(buffer.fgEndsWithLineFeed());
}

TEST(BlockBuffer, BorrowsOrCopiesLinesThatAreUsedTogether) {
    Chunk chunk("one\ntwo\n\nthree");
    LineFinder finder;
    finder.start(chunk.block.data() + chunk.block.size());
    ChunkLines lines;
    ASSERT_TRUE(finder.find(chunk.block.data(), 10, &lines));
    for (const std::string_view carried : {"", "carried "}) {
        BlockBuffer buffer;
        if (!carried.empty()) {
            ASSERT_TRUE(buffer.fgAppendText(carried));
        }
        ASSERT_TRUE(buffer.fgAppendLines(lines));
        EXPECT_EQ(buffer.strText(), std::string(carried) + "one\ntwo\n");
        EXPECT_EQ(buffer.strText().data() == lines.text.data(), carried.empty());
        EXPECT_EQ(buffer.uLineFeeds(), 2u);
    }
}

TEST(BlockBuffer, TakesLineEndsOutOfLinesThatAreUsedTogether) {
    Chunk chunk("one\r\ntwo\rthree\nfour\r\n\r\nfive");
    LineFinder finder;
    finder.start(chunk.block.data() + chunk.block.size());
    ChunkLines lines;
    ASSERT_TRUE(finder.find(chunk.block.data(), ChunkLines::kMost, &lines));
    BlockBuffer buffer;
    ASSERT_TRUE(buffer.fgAppendLines(lines));
    EXPECT_EQ(buffer.strText(), "one\ntwo\nthree\nfour\n");
    EXPECT_STREQ(buffer.pcOwned(), "one\ntwo\nthree\nfour\n");
    EXPECT_EQ(buffer.uLineFeeds(), 4u);
}

TEST(BlockBuffer, CopiesWhatDoesNotLieAsItIsUsed) {
    const struct {
        std::string chunk, text;
        unsigned line_feeds;
    } cases[] = {
        {"one\r\ntwo\n", "one\ntwo\n", 2},
        {"one\ntwo\r", "one\ntwo\n", 2},
        {"one\ntwo\rthree\n", "one\ntwo\nthree\n", 3},
        {"o\0ne\ntwo\n"s, "otwo\n", 1},
        {"one\ntw\0o\n"s, "one\ntw", 1},
        {"\0\n\0\n"s, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.chunk));
        Chunk chunk(c.chunk);
        BlockBuffer buffer;
        append_lines(buffer, chunk);
        EXPECT_EQ(buffer.strText(), c.text);
        EXPECT_FALSE(chunk.owns(buffer.strText()));
        EXPECT_EQ(buffer.uLineFeeds(), c.line_feeds);
        EXPECT_EQ(buffer.fgEndsWithLineFeed(), !c.text.empty() && c.text.back() == '\n');
    }
}

TEST(BlockBuffer, CopiesWhenALineIsLeftOut) {
    Chunk chunk("one\ntwo\nthree\n");
    BlockBuffer buffer;
    ASSERT_TRUE(buffer.fgAppendLines(chunk.lines[0]));
    ASSERT_TRUE(buffer.fgAppendLines(chunk.lines[2]));
    EXPECT_EQ(buffer.strText(), "one\nthree\n");
    EXPECT_EQ(buffer.uLineFeeds(), 2u);
}

TEST(BlockBuffer, CopyOutlivesItsChunk) {
    auto first = std::make_unique<Chunk>("one\ntwo\nth");
    BlockBuffer buffer;
    append_lines(buffer, *first);
    ASSERT_TRUE(buffer.fgAppendText("th"));
    first.reset();
    const Chunk second("ree\nfour\n");
    append_lines(buffer, second);
    EXPECT_EQ(buffer.strText(), "one\ntwo\nthree\nfour\n");
    EXPECT_STREQ(buffer.pcOwned(), "one\ntwo\nthree\nfour\n");
    EXPECT_EQ(buffer.uLineFeeds(), 4u);
}

TEST(BlockBuffer, OwnedTextIsZeroTerminated) {
    BlockBuffer buffer;
    ASSERT_TRUE(buffer.fgAppendText("a\nb\n\nc"));
    EXPECT_STREQ(buffer.pcOwned(), "a\nb\n\nc");
    EXPECT_EQ(buffer.uLineFeeds(), 3u);
    EXPECT_FALSE(buffer.fgEndsWithLineFeed());
    ASSERT_TRUE(buffer.fgAppendText(""));
    EXPECT_STREQ(buffer.pcOwned(), "a\nb\n\nc");
}

TEST(BlockBuffer, EmptyTextGivesStorageAllTheSame) {
    BlockBuffer buffer;
    ASSERT_TRUE(buffer.fgAppendText(""));
    ASSERT_NE(buffer.pcOwned(), nullptr);
    EXPECT_STREQ(buffer.pcOwned(), "");
    EXPECT_TRUE(buffer.fgIsEmpty());
    EXPECT_FALSE(buffer.fgEndsWithLineFeed());
}

TEST(BlockBuffer, TruncatesCopiedAndBorrowedText) {
    const Chunk chunk("d\ne\n");
    BlockBuffer buffer;
    ASSERT_TRUE(buffer.fgAppendText("ab\nc"));
    append_lines(buffer, chunk);
    buffer.vTruncate(4, 1);
    EXPECT_STREQ(buffer.pcOwned(), "ab\nc");
    EXPECT_EQ(buffer.strText(), "ab\nc");
    EXPECT_EQ(buffer.uLineFeeds(), 1u);

    BlockBuffer borrowing;
    append_lines(borrowing, chunk);
    borrowing.vTruncate(0, 0);
    EXPECT_TRUE(borrowing.fgIsEmpty());
    ASSERT_TRUE(borrowing.fgAppendLines(chunk.lines[1]));
    EXPECT_EQ(borrowing.strText(), "e\n");
    EXPECT_EQ(borrowing.uLineFeeds(), 1u);
}

// Every size around the first storage and those that it grows to.
TEST(BlockBuffer, GrowsByteByByte) {
    BlockBuffer buffer;
    std::string expected;
    for (int index = 0; index < 3000; ++index) {
        const char c = static_cast<char>('a' + index % 26);
        expected += c;
        ASSERT_TRUE(buffer.fgAppendText(std::string_view(&c, 1)));
        ASSERT_EQ(std::strlen(buffer.pcOwned()), expected.size());
    }
    EXPECT_EQ(buffer.strText(), expected);
}

TEST(BlockBuffer, MovesBorrowedTextIntoStorageOfAnySize) {
    for (const std::size_t size : {0u, 1u, 100u, 254u, 255u, 256u, 1000u, 100000u}) {
        SCOPED_TRACE(size);
        const std::string line(size, 'x');
        const Chunk chunk(line + "\n");
        BlockBuffer buffer;
        append_lines(buffer, chunk);
        ASSERT_TRUE(buffer.fgAppendText("tail"));
        EXPECT_EQ(buffer.strText(), line + "\ntail");
    }
}

TEST(BlockBuffer, KeepsUsualStorageForTheNextText) {
    for (const std::size_t size : {60000u, 65535u}) {
        SCOPED_TRACE(size);
        BlockBuffer buffer;
        ASSERT_TRUE(buffer.fgAppendText(std::string(size, 'x')));
        const char* const storage = buffer.pcOwned();
        buffer.vClear();
        EXPECT_TRUE(buffer.fgIsEmpty());
        EXPECT_EQ(buffer.uLineFeeds(), 0u);
        EXPECT_EQ(buffer.pcOwned(), storage);
        const Chunk chunk("borrowed first\n");
        append_lines(buffer, chunk);
        ASSERT_TRUE(buffer.fgAppendText("next"));
        EXPECT_EQ(buffer.pcOwned(), storage);
        EXPECT_STREQ(buffer.pcOwned(), "borrowed first\nnext");
    }
}

TEST(BlockBuffer, GivesHugeStorageBack) {
    for (const char* const next : {"next", ""}) {
        SCOPED_TRACE(next);
        BlockBuffer buffer;
        ASSERT_TRUE(buffer.fgAppendText(std::string(200000, 'x')));
        buffer.vClear();
        EXPECT_EQ(buffer.pcOwned(), nullptr);
        EXPECT_TRUE(buffer.fgIsEmpty());
        ASSERT_TRUE(buffer.fgAppendText(next));
        EXPECT_STREQ(buffer.pcOwned(), next);
    }
}

}  // namespace
}  // namespace webvtt
