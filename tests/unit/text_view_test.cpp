// Views of text: splitting, and the two accesses whose errors a host gets to see.
#include "base/text.h"

#include <gtest/gtest.h>

#include <string>

namespace webvtt {
namespace {

TEST(TextView, SplitFirst) {
    const struct {
        const char *text, *delimiter, *head, *tail;
        bool found;
    } cases[] = {
        {"a,b,c", ",", "a", "b,c", true}, {"abc", ",", "abc", "", false},
        {",b", ",", "", "b", true},       {"a,", ",", "a", "", true},
        {"", ",", "", "", false},         {"a-->b", "-->", "a", "b", true},
        {"abc", "", "", "abc", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " / " + c.delimiter);
        const Split split = split_first(c.text, std::string_view(c.delimiter));
        EXPECT_EQ(split.head, c.head);
        EXPECT_EQ(split.tail, c.tail);
        EXPECT_EQ(split.found, c.found);
    }
    EXPECT_EQ(split_first("a b c", ' ').tail, "b c");
}

TEST(TextView, StartsWithAndContains) {
    EXPECT_TRUE(starts_with("Region: a", "Region:"));
    EXPECT_FALSE(starts_with("Region", "Region:"));
    EXPECT_FALSE(starts_with("region:", "Region:"));
    EXPECT_TRUE(starts_with("a", ""));
    EXPECT_TRUE(contains(":LOCAL:", "LOCAL:"));
    EXPECT_FALSE(contains("LOCAL", "LOCAL:"));
}

TEST(TextView, TrimSpacesKeepsOtherBlanks) {
    EXPECT_EQ(trim_spaces("  a b  "), "a b");
    EXPECT_EQ(trim_spaces("\t a \n"), "\t a \n");
    EXPECT_EQ(trim_spaces("   "), "");
    EXPECT_EQ(trim_spaces(""), "");
}

template <typename Call>
std::string out_of_range_text(Call call) {
    try {
        call();
    } catch (const std::out_of_range& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(TextView, CharAtNamesTheAccess) {
    EXPECT_EQ(char_at("abc", 0), 'a');
    EXPECT_EQ(char_at("abc", 2), 'c');
    const std::string_view text = "abc";
    for (const std::size_t index : {std::size_t{3}, std::size_t{4}, std::string_view::npos}) {
        EXPECT_EQ(out_of_range_text([&] { char_at(text, index); }), "basic_string::at");
    }
    EXPECT_EQ(out_of_range_text([] { char_at("", 0); }), "basic_string::at");
}

TEST(TextView, TextFromAcceptsTheEnd) {
    EXPECT_EQ(text_from("abc", 0), "abc");
    EXPECT_EQ(text_from("abc", 1), "bc");
    EXPECT_EQ(text_from("abc", 3), "");
    EXPECT_EQ(out_of_range_text([] { text_from("abc", 4); }), "basic_string::substr");
    EXPECT_EQ(out_of_range_text([] { text_from("", 1); }), "basic_string::substr");
}

TEST(SameWord, ComparesEveryCharacter) {
    const struct {
        std::string_view word, other;
        bool same;
    } cases[] = {
        {"", "", true},         {"a", "", false},        {"", "a", false},
        {"line", "line", true}, {"line", "lind", false}, {"line", "xine", false},
        {"line", "lin", false}, {"lin", "line", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(same_word(c.word, c.other), c.same) << c.word << " " << c.other;
    }
}

}  // namespace
}  // namespace webvtt
