// The last character of a payload, in every state that can meet it.
//
// The tag state does not consume it, and the start-tag state never looks at it, so it is read again
// as text. A name whose first letter is the last character is the exception: the letter is taken.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/exact_block.h"
#include "token_dump.h"

namespace webvtt {
namespace {

struct LastCase {
    const char *payload, *tokens;
    std::vector<std::string> classes;
};

void check(const LastCase& c) {
    SCOPED_TRACE(testing::PrintToString(std::string(c.payload)));
    const Cut cut(c.payload);
    EXPECT_EQ(cut.tokens, c.tokens);
    EXPECT_EQ(cut.classes, c.classes);
}

TEST(LastCharacter, InTextAndReferences) {
    const LastCase cases[] = {
        {"a", "text[a]1", {}},           {"&", "text[&]1", {}},    {"<", "start[]1", {}},
        {"a<", "text[a]1 start[]1", {}}, {"&a", "text[&a]2", {}},  {"&;", "text[&;]2", {}},
        {"& ", "text[ ]2", {}},          {"&lt;", "text[<]4", {}}, {"&<", "text[&]1 start[]1", {}},
    };
    for (const LastCase& c : cases) {
        check(c);
    }
}

TEST(LastCharacter, InTheTagState) {
    const LastCase cases[] = {
        {"<>", "start[]1 text[>]1", {}},   {"< ", "start[]1 text[ ]1", {}},
        {"<\t", "start[]1 text[\t]1", {}}, {"<\n", "start[]1 text[\n]1", {}},
        {"<\f", "start[]1 text[\f]1", {}}, {"<.", "start[]1 text[.]1", {""}},
        {"</", "end[]1 text[/]1", {}},     {"<5", "time[5]1 text[5]1", {}},
        {"<b", "start[b]2", {}},           {"<<", "start[<]2", {}},
        {"<&", "start[&]2", {}},
    };
    for (const LastCase& c : cases) {
        check(c);
    }
}

TEST(LastCharacter, InTheStartTagState) {
    const LastCase cases[] = {
        {"<b>", "start[b]2 text[>]1", {}},    {"<bc", "start[b]2 text[c]1", {}},
        {"<b ", "start[b]2 text[ ]1", {}},    {"<b\n", "start[b]2 text[\n]1", {}},
        {"<b.", "start[b]2 text[.]1", {}},    {"<b<", "start[b]2 start[]1", {}},
        {"<ba>", "start[ba]3 text[>]1", {}},  {"<lang>", "start[lang]5 text[>]1", {}},
        {"<b x", "start[b]3 text[x]1", {}},   {"<b\nx", "start[b|\n]3 text[x]1", {}},
        {"<b >", "start[b]3 text[>]1", {}},   {"<b.x", "start[b]3 text[x]1", {""}},
        {"<b.>", "start[b]3 text[>]1", {""}}, {"<b.\n", "start[b]3 text[\n]1", {""}},
        {"<b>x", "start[b]3 text[x]1", {}},
    };
    for (const LastCase& c : cases) {
        check(c);
    }
}

TEST(LastCharacter, InTheClassState) {
    const LastCase cases[] = {
        {"<c.a>", "start[c|a]5", {"a"}},   {"<c.ab", "start[c|ab]5", {"ab"}},
        {"<c.a.", "start[c]5", {"a", ""}}, {"<c.a ", "start[c|a]5", {"a"}},
        {"<c.a\n", "none[c|\n]5", {"a"}},  {"<.a", "start[|a]3", {"a"}},
        {"<.>", "start[]3", {""}},
    };
    for (const LastCase& c : cases) {
        check(c);
    }
}

TEST(LastCharacter, InTheAnnotationState) {
    const LastCase cases[] = {
        {"<v a>", "start[v|a]5", {}}, {"<v ab", "start[v|ab]5", {}}, {"<v a ", "start[v|a]5", {}},
        {"< a", "start[|a]3", {}},    {"< >", "start[]3", {}},
    };
    for (const LastCase& c : cases) {
        check(c);
    }
}

TEST(LastCharacter, InEndTagsAndTimestamps) {
    const LastCase cases[] = {
        {"</a>", "end[a]4", {}}, {"</a", "end[a]3", {}},   {"</>", "end[]3", {}},
        {"<1>", "time[1]3", {}}, {"<12", "time[12]3", {}}, {"<1.", "time[1.]3", {}},
    };
    for (const LastCase& c : cases) {
        check(c);
    }
}

// A state that asks only whether it should stop, and reads no further character, relies on it.
TEST(LastCharacter, StopIsSetWithTheStepBehindIt) {
    support::ExactBlock block("ab");
    Cue::Tokenizer_Data data(block.data(), 2);
    EXPECT_EQ(data.cRead(), 'a');
    data.vAdvance();
    EXPECT_FALSE(data.fgStop);
    EXPECT_EQ(data.cRead(), 'b');
    data.vAdvance();
    EXPECT_TRUE(data.fgStop);
    EXPECT_EQ(data.cRead(), '\0');
    EXPECT_EQ(data.iPosition, 2);
}

}  // namespace
}  // namespace webvtt
