// Lines where they lie in a chunk.
#include "parser/line_finder.h"

#include <gtest/gtest.h>

#include <string>

#include "support/exact_block.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

/// "[one]4n [two]5 [x]3#~ +tail": the text of each line, the bytes it takes, "n" when it ends in a
/// line feed alone, "#" when it is cut, "~" when its CR ends the chunk, "b" when it is blank; then
/// what is left.
std::string dump_lines(std::string_view bytes) {
    support::ExactBlock chunk(bytes);
    const char* begin = chunk.data();
    LineFinder finder;
    finder.start(begin + chunk.size());
    std::string dump;
    ChunkLine line;
    while (finder.find(begin, &line)) {
        EXPECT_EQ(line.bytes.data(), begin);
        EXPECT_EQ(line.text.data(), begin);
        EXPECT_LE(line.text.size(), line.bytes.size());
        dump += "[" + std::string(line.text) + "]" + std::to_string(line.consumed);
        dump += line.ends_in_line_feed ? "n" : "";
        dump += line.is_cut ? "#" : "";
        dump += line.ends_in_open_cr ? "~" : "";
        dump += line.is_blank() ? "b" : "";
        dump += " ";
        begin += line.consumed;
    }
    return dump + "+" + std::string(finder.tail(begin));
}

TEST(LineFinder, FindsEveryLine) {
    const struct {
        std::string chunk, lines;
    } cases[] = {
        {"", "+"},
        {"abc", "+abc"},
        {"a\nb\n", "[a]2n [b]2n +"},
        {"a\r\nb", "[a]3 +b"},
        {"a\rb\n", "[a]2 [b]2n +"},
        {"a\r", "[a]2~ +"},
        {"\n", "[]1nb +"},
        {"\r", "[]1~b +"},
        {"\r\n", "[]2b +"},
        {"\n\r", "[]1nb []1~b +"},
        {"\r\r\n\n\ra", "[]1b []2b []1nb []1b +a"},
        {"x\n \n", "[x]2n [ ]2n +"},
        // A zero byte hides the rest of its line.
        {"a\0b\nc\n"s, "[a]4n#b [c]2n +"},
        {"ab\0\r\nc"s, "[ab]5# +c"},
        {"\0\n\0x\r"s, "[]2n#b []3#~b +"},
        {"a\nb\0c"s, "[a]2n +b"},
        {"a\n\0"s, "[a]2n +"},
        {"\0\0\n\n"s, "[]3n#b []1nb +"},
        {"ab\n\0c\nde\n"s, "[ab]3n []3n#b [de]3n +"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.chunk));
        EXPECT_EQ(dump_lines(c.chunk), c.lines);
    }
}

/// "[text]lines:3 blank:1 takes:9 markup, " for each block of at most three lines, then what is
/// left to be read line by line.
std::string dump_blocks(std::string_view bytes) {
    support::ExactBlock chunk(bytes);
    const char* begin = chunk.data();
    LineFinder finder;
    finder.start(begin + chunk.size());
    std::string dump;
    ChunkBlock block;
    while (finder.find_block(begin, 3, &block)) {
        dump += "[" + std::string(block.text) + "]lines:" + std::to_string(block.line_feeds) +
                " blank:" + std::to_string(block.blank_lines) +
                " takes:" + std::to_string(block.consumed) +
                (block.may_have_markup ? " markup, " : ", ");
        begin += block.consumed;
    }
    return dump + "+" + std::string(begin, static_cast<const char*>(chunk.data()) + chunk.size());
}

TEST(LineFinder, FindsWholeBlocks) {
    const struct {
        std::string chunk, blocks;
    } cases[] = {
        {"", "+"},
        {"\n\n", "+\n\n"},
        {"a\n", "+a\n"},
        {"a\n\n", "[a\n]lines:1 blank:1 takes:3, +"},
        {"\n\na\nb\n\nc", "[a\nb\n]lines:2 blank:3 takes:7, +c"},
        {"a\nb\nc\n", "[a\nb\nc\n]lines:3 blank:0 takes:6, +"},
        {"a\nb\nc\n\nd\n\n", "[a\nb\nc\n]lines:3 blank:0 takes:6, [d\n]lines:1 blank:2 takes:4, +"},
        {"a\nb\nc\nd\n", "[a\nb\nc\n]lines:3 blank:0 takes:6, +d\n"},
        {" \n\n", "[ \n]lines:1 blank:1 takes:3, +"},
        {"a<\n\nb\n\nc&\n\n",
         "[a<\n]lines:1 blank:1 takes:4 markup, [b\n]lines:1 blank:1 takes:3, "
         "[c&\n]lines:1 blank:1 takes:4 markup, +"},
        // A carriage return or a zero in or right behind a block: its lines are not plain.
        {"a\r\n\n", "+a\r\n\n"},
        {"a\n\r\n", "+a\n\r\n"},
        {"a\nb\rc\n\n", "+a\nb\rc\n\n"},
        {"a\0\n\n"s, "+a\0\n\n"s},
        {"a\n\0\n\n"s, "+a\n\0\n\n"s},
        {"a\n\n\rb", "[a\n]lines:1 blank:1 takes:3, +\rb"},
        {"a\n\n\0b"s, "[a\n]lines:1 blank:1 takes:3, +\0b"s},
        {"a\nb\nc\n\r\n", "[a\nb\nc\n]lines:3 blank:0 takes:6, +\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.chunk));
        EXPECT_EQ(dump_blocks(c.chunk), c.blocks);
    }
}

TEST(LineFinder, FindingConsumesNothing) {
    support::ExactBlock chunk("one\ntwo\n");
    LineFinder finder;
    finder.start(chunk.data() + chunk.size());
    ChunkLine line;
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(finder.find(chunk.data(), &line));
        EXPECT_EQ(line.text, "one");
    }
    ASSERT_TRUE(finder.find(chunk.data() + 4, &line));
    EXPECT_EQ(line.text, "two");
    EXPECT_EQ(finder.tail(chunk.data() + 5), "wo\n");
}

TEST(LineFinder, StartsAfreshWithEveryChunk) {
    support::ExactBlock first("a\r\0\n");
    support::ExactBlock second("bcd\n");
    LineFinder finder;
    ChunkLine line;
    finder.start(nullptr);
    EXPECT_FALSE(finder.find(nullptr, &line));
    for (support::ExactBlock* const chunk : {&first, &second, &first}) {
        finder.start(chunk->data() + chunk->size());
        ASSERT_TRUE(finder.find(chunk->data(), &line));
        EXPECT_EQ(line.text, chunk == &first ? "a" : "bcd");
    }
}

}  // namespace
}  // namespace webvtt
