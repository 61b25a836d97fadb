// The tokenizer inside tags. Each payload goes on behind its tag; what becomes of a tag at the very
// end is in tokenizer_last_character_test.cpp.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "token_dump.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

struct TagCase {
    std::string payload, tokens;
    std::vector<std::string> classes;
};

void check(const TagCase& c) {
    SCOPED_TRACE(testing::PrintToString(c.payload));
    const Cut cut(c.payload);
    EXPECT_EQ(cut.tokens, c.tokens);
    EXPECT_EQ(cut.classes, c.classes);
}

TEST(TokenizerTags, StartTagNames) {
    const TagCase cases[] = {
        {"<b>x", "start[b]3 text[x]1", {}},
        {"<ruby>x", "start[ruby]6 text[x]1", {}},
        {"<B>x", "start[B]3 text[x]1", {}},
        {"<>x", "start[]2 text[x]1", {}},
        {"<b/>x", "start[b/]4 text[x]1", {}},
        {"<b<i>x", "start[b<i]5 text[x]1", {}},
        {"<b&lt;>x", "start[b&lt;]7 text[x]1", {}},
        {"<b1>x", "start[b1]4 text[x]1", {}},
        {"<\xC3\xA9>x", "start[\xC3\xA9]4 text[x]1", {}},
        {"<v\rBob>x", "start[v\rBob]7 text[x]1", {}},  // a carriage return is no whitespace
        {"<\rb>x", "start[\rb]4 text[x]1", {}},
        {"<b\0c>x"s, "start[b\0c]5 text[x]1"s, {}},
        {"<b>x</b>", "start[b]3 text[x]1 end[b]4", {}},
    };
    for (const TagCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerTags, Annotations) {
    const TagCase cases[] = {
        {"<v Bob>Hi", "start[v|Bob]7 text[Hi]2", {}},
        {"<v   Bob  >x", "start[v|Bob]11 text[x]1", {}},
        {"<v\tBob>x", "start[v|Bob]7 text[x]1", {}},
        {"<v\fBob>x", "start[v|Bob]7 text[x]1", {}},
        {"<v\nBob>x", "start[v|\nBob]7 text[x]1", {}},       // the line feed is its first character
        {"<v \nBob\t>x", "start[v|\nBob\t]9 text[x]1", {}},  // only spaces are trimmed
        {"<v Bob\nJ. R.>x", "start[v|Bob\nJ. R.]13 text[x]1", {}},
        {"<v a<b>x", "start[v|a<b]7 text[x]1", {}},
        {"<v &amp;>x", "start[v|&amp;]9 text[x]1", {}},
        {"<v >x", "start[v]4 text[x]1", {}},
        {"< b>x", "start[|b]4 text[x]1", {}},
        {"<\tb>x", "start[|b]4 text[x]1", {}},
        {"<\fb>x", "start[|b]4 text[x]1", {}},
        {"<\nb>x", "start[|b]4 text[x]1", {}},  // here the line feed is not kept
    };
    for (const TagCase& c : cases) {
        check(c);
    }
}

// The last class name stays in the buffer that the annotation is collected in.
TEST(TokenizerTags, Classes) {
    const TagCase cases[] = {
        {"<c.a.b>x", "start[c|b]7 text[x]1", {"a", "b"}},
        {"<c.a.a>x", "start[c|a]7 text[x]1", {"a", "a"}},
        {"<c.>x", "start[c]4 text[x]1", {""}},
        {"<c.x.>x", "start[c]6 text[x]1", {"x", ""}},
        {"<c..x>y", "start[c|x]6 text[y]1", {"", "x"}},
        {"<.a>x", "start[|a]4 text[x]1", {"a"}},
        {"<c.1\r<&>x", "start[c|1\r<&]8 text[x]1", {"1\r<&"}},
        {"<v.loud Bob>x", "start[v|loudBob]12 text[x]1", {"loud"}},
        {"<v.loud\tBob>x", "start[v|loudBob]12 text[x]1", {"loud"}},
        {"<v.loud\fBob>x", "start[v|loudBob]12 text[x]1", {"loud"}},
        {"<v.loud  Bob >x", "start[v|loud Bob]14 text[x]1", {"loud"}},
        {"<v.a. Bob>x", "start[v|Bob]10 text[x]1", {"a", ""}},
        {"<v.a b.c>x", "start[v|ab.c]9 text[x]1", {"a"}},  // no classes in an annotation
    };
    for (const TagCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerTags, LineFeedInAListOfClassesEndsTheTokenWithoutAKind) {
    const TagCase cases[] = {
        {"<c.a\nb>x", "none[c|\n]5 text[b>x]3", {"a"}},
        {"<c.a.\nb>x", "none[c|\n]6 text[b>x]3", {"a", ""}},
        {"<.\nb", "none[|\n]3 text[b]1", {""}},
    };
    for (const TagCase& c : cases) {
        check(c);
    }
}

TEST(TokenizerTags, EndTagsAndTimestampsAreKeptAsWritten) {
    const TagCase cases[] = {
        {"</i>x", "end[i]4 text[x]1", {}},
        {"</b >x", "end[b ]5 text[x]1", {}},
        {"</ b>x", "end[ b]5 text[x]1", {}},
        {"</>x", "end[]3 text[x]1", {}},
        {"</c.a b\n<>x", "end[c.a b\n<]10 text[x]1", {}},
        {"<00:01.000>x", "time[00:01.000]11 text[x]1", {}},
        {"<0>x", "time[0]3 text[x]1", {}},
        {"<9 .\n/<&>x", "time[9 .\n/<&]9 text[x]1", {}},
    };
    for (const TagCase& c : cases) {
        check(c);
    }
}

}  // namespace
}  // namespace webvtt
