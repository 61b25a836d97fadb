// Lines out of a chunk, and the text that is carried to the next one.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "parser_fixture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

const std::string kExhausted = support::error_line("Buffer Exhausted");

class LineCollector : public ParserTest {
  protected:
    void install(std::string_view chunk) {
        m_chunk = std::make_unique<support::ExactBlock>(chunk);
        parser.vSetParsingBuffer(m_chunk->data(), m_chunk->size());
    }

    /// The next line up to its terminating zero; "none" when there is no complete line.
    std::string collect() {
        char* line = nullptr;
        bool found = false;
        output = support::output_of([&] { found = parser.fgCollectLine(&line); });
        EXPECT_EQ(found, line != nullptr);
        const std::string text = found ? line : "none";
        parser.vDestoryLine(&line);
        return text;
    }

    void expect_line(const std::string& text, const std::string& printed = "") {
        EXPECT_EQ(collect(), text);
        expect_output(printed);
    }

    /// The cue that the carried text becomes when it is followed by a chunk.
    Texts texts_after(std::string_view chunk) {
        install(chunk);
        support::output_of([&] { EXPECT_EQ(parser.ersltParseCue(), 1); });
        return texts();
    }

  private:
    std::unique_ptr<support::ExactBlock> m_chunk;
};

TEST_F(LineCollector, LineFeeds) {
    install("a\nb\n");
    expect_line("a\n");
    expect_line("b\n", kExhausted);
    expect_line("none");
}

TEST_F(LineCollector, CarriageReturnAndLineFeedAreOneEnd) {
    install("a\r\nb");
    expect_line("a\n");
    expect_line("none");
    EXPECT_TRUE(parser.fgIsBufferAvailable());  // "b" is left unread
}

TEST_F(LineCollector, LoneCarriageReturnEndsALine) {
    install("a\rb\n");
    expect_line("a\n");
    expect_line("b\n", kExhausted);
}

TEST_F(LineCollector, EveryMixtureOfEnds) {
    install("\r\r\n\n\n\ra\r\r\n\rb");
    for (const char* line : {"\n", "\n", "\n", "\n", "\n", "a\n", "\n", "\n", "none", "none"}) {
        expect_line(line);
    }
}

TEST_F(LineCollector, BlankLineIsOneByte) {
    install("\n");
    expect_line("\n", kExhausted);
    EXPECT_FALSE(parser.fgIsBufferAvailable());
}

TEST_F(LineCollector, CarriageReturnAtTheEndOfAChunk) {
    install("a\r");
    expect_line("a\n", kExhausted);
    expect_line("none");
}

TEST_F(LineCollector, CarriageReturnAtTheEndTakesTheNextChunksLineFeed) {
    EXPECT_EQ(feed("WEBVTT\r"), 1);
    expect_output(kExhausted);
    EXPECT_EQ(feed("\nRegion: lines=x\n"), 1);  // not a blank line, so still in the header section
    expect_output(kExhausted + "input is x\nNot a valid data string\n");
}

TEST_F(LineCollector, ChunkWithoutAnEndIsLeftAlone) {
    install("abc");
    expect_line("none");
    expect_line("none");
    EXPECT_TRUE(parser.fgIsBufferAvailable());
    install("");
    expect_line("none");
    parser.vSetParsingBuffer(nullptr, 5);
    expect_line("none");
    EXPECT_FALSE(parser.fgIsBufferAvailable());
}

// The count is printed with the errors of cue blocks.
TEST_F(LineCollector, CountsCollectedLinesOnly) {
    install("a\nb\r\nc\r\rpartial");
    while (collect() != "none") {
    }
    EXPECT_EQ(feed("WEBVTT\n\nbad --> 00:02.000\nx\n\n"), 0);
    expect_errors({"Buffer Exhausted", "Invalid Start Time Stamp <bad>", "Error occured at LINE 9",
                   "FINISHED"});
}

TEST_F(LineCollector, ZeroByteIsCopiedAndEndsTheTextForItsUsers) {
    install("a\0b\nc\n"s);
    char* line = nullptr;
    ASSERT_TRUE(parser.fgCollectLine(&line));
    EXPECT_EQ(std::string(line, 5), "a\0b\n\0"s);
    parser.vDestoryLine(&line);
    expect_line("c\n", kExhausted);
}

TEST_F(LineCollector, DestroyingALineLeavesThePointer) {
    install("a\n");
    char* line = nullptr;
    support::output_of([&] { ASSERT_TRUE(parser.fgCollectLine(&line)); });
    const char* const before = line;
    parser.vDestoryLine(&line);
    EXPECT_EQ(line, before);
    line = nullptr;
    parser.vDestoryLine(&line);
    EXPECT_EQ(line, nullptr);
}

TEST_F(LineCollector, SavesPrefixAndTail) {
    install("Hi\nthe");
    expect_line("Hi\n");
    EXPECT_TRUE(parser.fgSaveUnusedBuffer((kTiming + "Hi\n"s).c_str()));
    EXPECT_TRUE(parser.fgIsBufferAvailable());  // the buffer itself is left as it is
    EXPECT_EQ(texts_after("re\n\n"), Texts{"Hi\nthere\n"});
}

TEST_F(LineCollector, SavesPrefixAlone) {
    install("");
    EXPECT_TRUE(parser.fgSaveUnusedBuffer((kTiming + "Hi\n"s).c_str()));
    EXPECT_EQ(texts_after("\n"), Texts{"Hi\n"});
}

TEST_F(LineCollector, SavesTailAlone) {
    install("00:01.0");
    EXPECT_TRUE(parser.fgSaveUnusedBuffer(nullptr));
    EXPECT_EQ(texts_after("00 --> 00:02.000\nHi\n\n"), Texts{"Hi\n"});
}

TEST_F(LineCollector, SavingReplacesEarlierText) {
    install("");
    EXPECT_TRUE(parser.fgSaveUnusedBuffer("lost\nlost\n"));
    EXPECT_TRUE(parser.fgSaveUnusedBuffer(kTiming.c_str()));
    EXPECT_EQ(texts_after("Hi\n\n"), Texts{"Hi\n"});
}

TEST_F(LineCollector, SavingNothingDiscardsEarlierText) {
    for (const char* prefix : {static_cast<const char*>(nullptr), ""}) {
        install("");
        EXPECT_TRUE(parser.fgSaveUnusedBuffer("id\n"));
        EXPECT_FALSE(parser.fgSaveUnusedBuffer(prefix));
        EXPECT_EQ(texts_after(block_at(1, "Hi")), Texts{"Hi\n"});
    }
}

TEST_F(LineCollector, ClearingDiscardsEarlierText) {
    install("");
    EXPECT_TRUE(parser.fgSaveUnusedBuffer("lost\nlost\n"));
    parser.vClearUnusedBuffer();
    parser.vClearUnusedBuffer();
    EXPECT_EQ(texts_after(block_at(1, "Hi")), Texts{"Hi\n"});
}

}  // namespace
}  // namespace webvtt
