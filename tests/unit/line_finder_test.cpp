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
    ChunkLines line;
    while (finder.find(begin, 1, &line)) {
        EXPECT_EQ(line.count, 1u);
        EXPECT_FALSE(line.blank_follows);
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

/// "[text]2 takes 9 blank, " for lines that are used together, three at most: their text, how many
/// there are, and whether a blank line behind them is taken too. Then what is left.
std::string dump_runs(std::string_view bytes) {
    support::ExactBlock chunk(bytes);
    const char* begin = chunk.data();
    LineFinder finder;
    finder.start(begin + chunk.size());
    std::string dump;
    ChunkLines lines;
    while (finder.find(begin, 3, &lines)) {
        dump += "[" + std::string(lines.text) + "]" + std::to_string(lines.count) + " takes " +
                std::to_string(lines.consumed) + (lines.blank_follows ? " blank, " : ", ");
        begin += lines.consumed;
    }
    return dump + "+" + std::string(begin, static_cast<const char*>(chunk.data()) + chunk.size());
}

TEST(LineFinder, FindsLinesThatAreUsedTogether) {
    const struct {
        std::string chunk, runs;
    } cases[] = {
        {"", "+"},
        {"\n\n", "[]1 takes 1, []1 takes 1, +"},
        {"a\n", "[a]1 takes 2, +"},
        {"a\n\n", "[a]1 takes 3 blank, +"},
        {"\na\nb\n\nc", "[]1 takes 1, [a\nb]2 takes 5 blank, +c"},
        {"a\nb\nc", "[a\nb]2 takes 4, +c"},
        // Of three lines nobody knows whether a block ends there.
        {"a\nb\nc\n\nd\n", "[a\nb\nc]3 takes 6, []1 takes 1, [d]1 takes 2, +"},
        {"a\nb\nc\nd\n", "[a\nb\nc]3 takes 6, [d]1 takes 2, +"},
        {" \n\n", "[ ]1 takes 3 blank, +"},
        // Whatever their line ends are.
        {"a\r\nb\r\n", "[a\r\nb]2 takes 6, +"},
        {"a\nb\rc\n", "[a\nb\rc]3 takes 6, +"},
        {"a\nb\r\n\nc\n", "[a\nb]2 takes 6 blank, [c]1 takes 2, +"},
        {"a\n\r\nb", "[a]1 takes 4 blank, +b"},
        {"a\r\n\r\nb\r\n", "[a]1 takes 5 blank, [b]1 takes 3, +"},
        {"a\r\n\rb", "[a]1 takes 4 blank, +b"},
        {"a\r\n\n\n", "[a]1 takes 4 blank, []1 takes 1, +"},
        {"\r\n\r\n", "[]1 takes 2, []1 takes 2, +"},
        // A line that a zero cuts is found alone, and so is one whose line end may go on.
        {"a\nb\0\n\n"s, "[a]1 takes 2, [b]1 takes 3, []1 takes 1, +"},
        {"a\0\r\n\r\nb"s, "[a]1 takes 4, []1 takes 2, +b"},
        {"ab\0\r\n\r\nc"s, "[ab]1 takes 5, []1 takes 2, +c"},
        {"a\r\nb\r", "[a]1 takes 3, [b]1 takes 2, +"},
        {"a\r\n\r", "[a]1 takes 3, []1 takes 1, +"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.chunk));
        EXPECT_EQ(dump_runs(c.chunk), c.runs);
    }
}

TEST(LineFinder, LooksForMarkup) {
    support::ExactBlock chunk("a<b\ncd\ne&f\n");
    const char* const begin = chunk.data();
    LineFinder finder;
    finder.start(begin + chunk.size());
    EXPECT_TRUE(finder.has_markup(begin, begin + 4));
    EXPECT_FALSE(finder.has_markup(begin + 4, begin + 7));
    EXPECT_TRUE(finder.has_markup(begin + 7, begin + 11));
    EXPECT_FALSE(finder.has_markup(begin + 9, begin + 11));
}

TEST(LineFinder, FindingConsumesNothing) {
    support::ExactBlock chunk("one\ntwo\n");
    LineFinder finder;
    finder.start(chunk.data() + chunk.size());
    ChunkLines line;
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(finder.find(chunk.data(), 1, &line));
        EXPECT_EQ(line.text, "one");
    }
    ASSERT_TRUE(finder.find(chunk.data() + 4, 1, &line));
    EXPECT_EQ(line.text, "two");
    EXPECT_EQ(finder.tail(chunk.data() + 5), "wo\n");
}

TEST(LineFinder, StartsAfreshWithEveryChunk) {
    support::ExactBlock first("a\r\0\n");
    support::ExactBlock second("bcd\n");
    LineFinder finder;
    ChunkLines line;
    finder.start(first.data());
    EXPECT_FALSE(finder.find(first.data(), 1, &line));
    for (support::ExactBlock* const chunk : {&first, &second, &first}) {
        finder.start(chunk->data() + chunk->size());
        ASSERT_TRUE(finder.find(chunk->data(), 1, &line));
        EXPECT_EQ(line.text, chunk == &first ? "a" : "bcd");
    }
}

}  // namespace
}  // namespace webvtt
