// The string type: construction, copying, trimming, searching, splitting.
#include "base/webvtt_string.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace webvtt {
namespace {

using std::string_literals::operator""s;

// Held by value inside the cue and the nodes: one field, no table of virtual operations.
static_assert(sizeof(WebvttString) == sizeof(std::string), "one field");
static_assert(!std::is_polymorphic_v<WebvttString>, "a plain value");

TEST(WebvttString, IsConstructedFromEveryKindOfText) {
    EXPECT_EQ(WebvttString().text, "");
    EXPECT_EQ(WebvttString("a\tb").text, "a\tb");
    EXPECT_EQ(WebvttString("a\0b"s).text, "a\0b"s);
    EXPECT_EQ(WebvttString("a\0b").text, "a");  // zero-terminated
    EXPECT_EQ(WebvttString("\xC3\xA9\xFF").text, "\xC3\xA9\xFF");
}

TEST(WebvttString, CopiesAreIndependent) {
    WebvttString original("one");
    WebvttString copied(original);
    WebvttString assigned("other");
    assigned = original;
    original.text = "two";
    EXPECT_EQ(copied.text, "one");
    EXPECT_EQ(assigned.text, "one");
}

TEST(WebvttString, TrimRemovesSpacesOnly) {
    const struct {
        std::string text, expected;
    } cases[] = {
        {"  a b  ", "a b"}, {"\ta ", "\ta"},
        {" a\t", "a\t"},    {"    ", ""},
        {"", ""},           {"a", "a"},
        {" a", "a"},        {"a ", "a"},
        {" \n ", "\n"},     {" \r\n", "\r\n"},
        {"\f \f", "\f \f"}, {" \0 "s, "\0"s},
        {" \xA0 ", "\xA0"}, {" a  b   c ", "a  b   c"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text));
        WebvttString text(c.text);
        EXPECT_EQ(&text.trim(), &text);
        EXPECT_EQ(text.text, c.expected);
    }
}

TEST(WebvttString, DoesContainComparesBytes) {
    const struct {
        std::string text, part;
        bool expected;
    } cases[] = {
        {"abc", "", true},        {"", "", true},          {"", "a", false},
        {"abc", "bd", false},     {"abc", "ABC", false},   {"abc", "abc", true},
        {"abc", "abcd", false},   {"abc", "b", true},      {"aab", "ab", true},
        {"a -> b", "-->", false}, {"a--->b", "-->", true}, {"a\0b"s, "\0b"s, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text + " / " + c.part);
        EXPECT_EQ(WebvttString(c.text).does_contain(WebvttString(c.part)), c.expected);
    }
}

TEST(WebvttString, IsEmptyLooksAtTheLength) {
    EXPECT_TRUE(WebvttString("").is_empty());
    EXPECT_FALSE(WebvttString(" ").is_empty());
    EXPECT_FALSE(WebvttString("\0"s).is_empty());
}

TEST(WebvttString, GetFirstSubstrBeforeStopsAtTheFirstDelimiter) {
    const struct {
        std::string text, delimiter, expected;
    } cases[] = {
        {"a,b,c", ",", "a"},
        {"a,b,c", ";", "a,b,c"},
        {",b", ",", ""},
        {"a,", ",", "a"},
        {"abc", "", ""},
        {"", ",", ""},
        {"", "", ""},
        {"a-->b-->c", "-->", "a"},
        {"a->b", "-->", "a->b"},
        {"line\nnext", "\n", "line"},
        {"a\0b,c"s, ",", "a\0b"s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text + " / " + c.delimiter);
        const WebvttString text(c.text);
        EXPECT_EQ(text.get_first_substr_before(WebvttString(c.delimiter)).text, c.expected);
        EXPECT_EQ(text.text, c.text);
    }
}

}  // namespace
}  // namespace webvtt
