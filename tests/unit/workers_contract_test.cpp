// The workers of the parse states, each called by itself over a chunk and a carried text, also over
// such as the state machine never hands them.
#include <gtest/gtest.h>

#include <string>

#include "parser_fixture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

class Workers : public ParserTest {
  protected:
    /// Results of a worker, called until it is done with the chunk: "1 1 0".
    std::string run(int (WebVTTParser::*worker)(), const char* carried, std::string chunk) {
        std::string results;
        output = support::output_of([&] {
            parser.vSetParsingBuffer(nullptr, 0);
            parser.fgSaveUnusedBuffer(carried);
            parser.vSetParsingBuffer(chunk.data(), static_cast<unsigned>(chunk.size()));
            int result = 0;
            do {
                result = (parser.*worker)();
                results += (results.empty() ? "" : " ") + std::to_string(result);
            } while (worker == &WebVTTParser::ersltParseCue && result == 1);
            parser.vClearUnusedBuffer();
        });
        return results;
    }
};

TEST_F(Workers, Signature) {
    const struct {
        const char *chunk, *result;
    } cases[] = {
        {"WEBVTT\n", "0"},      {"WEBVTT \n", "0"}, {"WEBVTT\r", "0"}, {"WEBVT\n", "2"},
        {"WEBVTT\tx\r\n", "0"}, {"WEBVTT", "2"},    {"", "2"},         {"\n", "2"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(&WebVTTParser::ersltCheckValidation, nullptr, c.chunk), c.result) << c.chunk;
    }
}

TEST_F(Workers, Headers) {
    const struct {
        const char *carried, *chunk, *result;
    } cases[] = {
        {nullptr, "", "1"},    {nullptr, "\n", "0"},   {nullptr, "a\nb\n", "1"},
        {"a", "\n", "1"},      {"", "\n", "0"},        {"a", "\n\n", "0"},
        {nullptr, "a\r", "1"}, {nullptr, "\r\n", "0"}, {"Region:", " id=a\n\n", "0"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(&WebVTTParser::ersltParseMetadataHeader, c.carried, c.chunk), c.result)
            << testing::PrintToString(c.chunk);
    }
}

TEST_F(Workers, Blocks) {
    const std::string ten_lines = "\n\n\n\n\n\n\n\n\n\n";
    const struct {
        std::string carried, chunk, results;
        Texts texts;
    } cases[] = {
        {"", "", "0", {}},
        {"", "\n\n", "0", {}},
        {"", kTiming + "a\n", "0", {}},
        {"", kTiming + "a\n\n", "1 0", {"a\n"}},
        {kTiming, "a\n\n" + kTiming + "b\n\n", "1 1 0", {"a\n", "b\n"}},
        {kTiming + "a", "\n\n", "1 0", {"a\n"}},
        {kTiming + "a", "\n", "0", {}},
        {kTiming + "a\n", "\n", "1 0", {"a\n"}},
        // The carried text alone is a full block, or more: the next line ends it all the same.
        {kTiming + "a\nb\nc\nd\ne\nf\ng\nh\n", "i\n", "1 0", {"a\nb\nc\nd\ne\nf\ng\nh\ni\n"}},
        {kTiming + "a\nb\nc\nd\ne\nf\ng\nh\ni\n", "j\n", "1 0", {"a\nb\nc\nd\ne\nf\ng\nh\ni\nj\n"}},
        {kTiming + ten_lines + "x\n", "y\nz\n", "1 0", {ten_lines + "x\ny\n"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.carried + "|" + c.chunk);
        EXPECT_EQ(run(&WebVTTParser::ersltParseCue, c.carried.c_str(), c.chunk), c.results);
        EXPECT_EQ(texts(), c.texts);
    }
}

// What counts is the length: a buffer that is null is carried as an empty text.
TEST_F(Workers, CarriesByTheLengthOfTheBuffer) {
    const struct {
        bool null;
        unsigned length;
        const char* prefix;
        bool carried;
    } cases[] = {
        {true, 0, nullptr, false}, {true, 5, nullptr, true}, {true, 5, "", true},
        {false, 0, "", false},     {false, 1, "", true},     {false, 0, "a", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.length);
        char text[] = "x";
        parser.vSetParsingBuffer(c.null ? nullptr : text, c.length);
        EXPECT_EQ(parser.fgSaveUnusedBuffer(c.prefix), c.carried);
        parser.vClearUnusedBuffer();
    }
}

TEST_F(Workers, TheSentinelStandsBeforeTheFirstRecord) {
    EXPECT_EQ(parser.prGetParseResult()->prNext, nullptr);
    EXPECT_EQ(run(&WebVTTParser::ersltParseCue, "", kTiming + "a\n\n" + kTiming + "b\n\n"),
              "1 1 0");
    const WebvttCueNode* const sentinel = parser.prGetParseResult();
    EXPECT_EQ(sentinel->pcText, nullptr);
    EXPECT_STREQ(sentinel->prNext->pcText, "a\n");
    EXPECT_STREQ(sentinel->prNext->prNext->pcText, "b\n");
    EXPECT_EQ(sentinel->prNext->prNext->prNext, nullptr);
    EXPECT_EQ(cues().size(), 2u);
    EXPECT_EQ(sentinel->prNext, nullptr);
}

}  // namespace
}  // namespace webvtt
