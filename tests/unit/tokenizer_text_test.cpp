// The tokenizer outside of tags: text runs and character references.
#include <gtest/gtest.h>

#include <string>

#include "payload/tokenizer.h"
#include "token_dump.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

struct TokenCase {
    std::string payload, tokens;
};

void check(const TokenCase& c) {
    SCOPED_TRACE(testing::PrintToString(c.payload));
    EXPECT_EQ(Cut(c.payload).tokens, c.tokens);
}

TEST(TokenizerText, RunsEndAtTags) {
    const TokenCase cases[] = {
        {"abc", "text[abc]3"},         {"abc<b>", "text[abc]3 start[b]2 text[>]1"},
        {"a>b", "text[a>b]3"},         {"a\nb\n", "text[a\nb\n]4"},
        {"a\r\t b", "text[a\r\t b]5"}, {"\xC3\xA9\xFF;/.", "text[\xC3\xA9\xFF;/.]6"},
        {"a\0b"s, "text[a\0b]3"s},
    };
    for (const TokenCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerText, ReferencesAreReplaced) {
    const TokenCase cases[] = {
        {"a&amp;b", "text[a&b]7"},
        {"&amp;", "text[&]5"},
        {"&lt;", "text[<]4"},
        {"&gt;", "text[>]4"},
        {"&lrm;", "text[\xE2\x80\x8E]5"},
        {"&rlm;", "text[\xE2\x80\x8F]5"},
        {"&nbsp;", "text[\xC2\xA0]6"},
        {"&lt;&lt;&gt;", "text[<<>]12"},
        {"&amp;lt;", "text[&lt;]8"},  // not replaced twice
        {"&lt;b&gt;x", "text[<b>x]10"},
        {"&amp;<b>x", "text[&]5 start[b]3 text[x]1"},
    };
    for (const TokenCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerText, UnknownReferencesStay) {
    const TokenCase cases[] = {
        {"&AMP;", "text[&AMP;]5"},       {"&foo;", "text[&foo;]5"},     {"&;", "text[&;]2"},
        {"&ampamp;", "text[&ampamp;]8"}, {"&a1Z9;x", "text[&a1Z9;x]7"}, {"&Lt;", "text[&Lt;]4"},
    };
    for (const TokenCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerText, PendingReferenceIsDroppedAtAnyOtherCharacter) {
    const TokenCase cases[] = {
        {"x &amp y", "text[x  y]8"},
        {"a & b", "text[a  b]5"},
        {"a &b{ c", "text[a { c]7"},
        {"&x y", "text[ y]4"},
        {"&#38;", "text[#38;]5"},
        {"&amp\n", "text[\n]5"},
        {"&am\xC3\xA9;", "text[\xC3\xA9;]6"},
        {"a&foo bar;", "text[a bar;]10"},
        {"&amp>", "text[>]5"},
        {"&\0b"s, "text[\0b]3"s},
    };
    for (const TokenCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerText, PendingReferenceIsKeptAtTheNextReferenceATagOrTheEnd) {
    const TokenCase cases[] = {
        {"&amp&lt;", "text[&amp<]8"},
        {"&&", "text[&&]2"},
        {"&&amp;", "text[&&]6"},
        {"&amp", "text[&amp]4"},
        {"a&", "text[a&]2"},
        {"&amp<b>", "text[&amp]4 start[b]2 text[>]1"},
        {"&<b>x", "text[&]1 start[b]3 text[x]1"},
    };
    for (const TokenCase& c : cases) {
        check(c);
    }
}

TEST(Tokenizer, StartsInTheDataState) {
    const Cue::Tokenizer_Data token("abc", 3);
    EXPECT_EQ(token.eState, Cue::STATE_DATA);
    EXPECT_EQ(token.eTokenType, Cue::TOKEN_NONE);
    EXPECT_STREQ(token.pcInput, "abc");
    EXPECT_EQ(token.iPosition, 0);
    EXPECT_EQ(token.iLength, 3);
    EXPECT_FALSE(token.fgStop);
    EXPECT_FALSE(token.fgTokenReady);
    EXPECT_TRUE(token.strBuffer.is_empty());
    EXPECT_TRUE(token.strResult.is_empty());
}

TEST(Tokenizer, StateBeyondTheLastOneEndsTheToken) {
    Cue cue;
    Cue::Tokenizer_Data token("abc", 3);
    token.eState = static_cast<Cue::Tokenizer_State>(8);
    token.eTokenType = Cue::TOKEN_END_TAG;
    EXPECT_EQ(cue.eTokenizer(token), Cue::TOKEN_END_TAG);
    EXPECT_TRUE(token.fgTokenReady);
    EXPECT_EQ(token.iPosition, 0);
}

TEST(Tokenizer, EmptyInputIsAnEmptyText) {
    Cue cue;
    Cue::Tokenizer_Data token("", 0);
    EXPECT_EQ(cue.eTokenizer(token), Cue::TOKEN_STRING);
    EXPECT_EQ(token.strResult.text, "");
    EXPECT_EQ(token.iPosition, 0);
    EXPECT_TRUE(token.fgStop);
}

// No token stands still and none goes beyond the input, whatever the input.
TEST(Tokenizer, ConsumesEveryShortPayloadExactly) {
    constexpr std::string_view alphabet = "<>/.&; \nb1";
    constexpr int longest = 4;
    std::string payload;
    const auto check_all = [&](const auto& self) -> void {
        if (!payload.empty()) {
            const Cut cut(payload);
            int sum = 0;
            for (const int count : cut.consumed) {
                sum += count;
            }
            ASSERT_EQ(sum, static_cast<int>(payload.size())) << payload << ": " << cut.tokens;
            ASSERT_EQ(cut.tokens.find("STUCK"), std::string::npos) << payload;
        }
        if (payload.size() == longest) {
            return;
        }
        for (const char c : alphabet) {
            payload.push_back(c);
            self(self);
            payload.pop_back();
        }
    };
    check_all(check_all);
}

}  // namespace
}  // namespace webvtt
