// The tokenizer's handlers, each called by itself on any state of a token, also on such as no
// payload leads to: input that ended before the call, a token that is ready, lengths below zero.
#include <gtest/gtest.h>

#include <string>

#include "payload/tokenizer.h"
#include "support/exact_block.h"

namespace webvtt {
namespace {

using TokenizerData = Cue::Tokenizer_Data;

using Handler = void (Cue::*)(TokenizerData&);
constexpr Handler kHandlers[] = {
    &Cue::vProcessDataState,          &Cue::vProcessEscapeState,
    &Cue::vProcessTagState,           &Cue::vProcessStartTagState,
    &Cue::vProcessStartTagClassState, &Cue::vProcessStartTagAnnotationState,
    &Cue::vProcessEndTagState,        &Cue::vProcessTimeStampState,
};

/// "state:type@position flags [result|buffer] classes": "0:1@3 SR [abc|]" for a finished text; the
/// flags are S for stop and R for ready.
std::string dump(const TokenizerData& data, const Cue& cue) {
    std::string text = std::to_string(data.eState) + ":" + std::to_string(data.eTokenType) + "@" +
                       std::to_string(data.iPosition) + " " + (data.fgStop ? "S" : "") +
                       (data.fgTokenReady ? "R" : "") + "[" + data.strResult.text + "|" +
                       data.strBuffer.text + "]";
    for (const WebvttString& name : cue.vecApplicableClasses) {
        text += " " + name.text + ";";
    }
    return text;
}

struct TokenizerCall {
    int state;
    std::string input;
    int position;
    const char* flags;  // on entry
    const char* buffer;
    const char* after;  // one call of the handler
};

/// The result starts as "r" everywhere but where the flags hold an "e".
void check(const TokenizerCall& call) {
    SCOPED_TRACE(testing::PrintToString(call.input) + " in state " + std::to_string(call.state) +
                 " from " + std::to_string(call.position) + " " + call.flags);
    support::ExactBlock input(call.input);
    const std::string flags = call.flags;
    TokenizerData data(input.data(), static_cast<int>(input.size()));
    data.eState = static_cast<Cue::Tokenizer_State>(call.state);
    data.iPosition = call.position;
    data.fgStop = flags.find('S') != std::string::npos;
    data.fgTokenReady = flags.find('R') != std::string::npos;
    data.strBuffer = call.buffer;
    data.strResult = flags.find('e') != std::string::npos ? "" : "r";
    Cue cue;
    (cue.*kHandlers[call.state])(data);
    EXPECT_EQ(dump(data, cue), call.after);
}

TEST(TokenizerContract, EachHandlerByItself) {
    const TokenizerCall calls[] = {
        // Text. An input that has ended gives what there is, be it nothing.
        {0, "abc", 0, "e", "", "0:1@3 SR[abc|]"},
        {0, "abc", 1, "", "b", "0:1@3 SR[rbc|b]"},
        {0, "abc", 0, "Se", "", "0:1@0 SR[|]"},
        {0, "abc", 1, "S", "b", "0:1@1 SR[r|b]"},
        {0, "", 0, "e", "", "0:1@0 SR[|]"},
        {0, "abc", 5, "", "", "0:1@5 SR[r|]"},
        {0, "a&b", 0, "", "b", "1:0@2 [ra|&]"},
        {0, "a&", 0, "", "b", "1:0@2 S[ra|&]"},
        {0, "<b", 0, "e", "b", "2:0@1 [|b]"},
        {0, "<", 0, "e", "", "2:0@1 S[|]"},
        {0, "<b", 0, "", "", "0:1@0 R[r|]"},
        {0, "a<b", 0, "e", "", "0:1@1 R[a|]"},
        {0, "abc", 0, "R", "", "0:0@1 R[ra|]"},
        {0, "a", 0, "R", "", "0:0@1 SR[ra|]"},
        // References.
        {1, "amp;x", 0, "", "&", "0:0@4 [r&|&amp]"},
        {1, "x;", 0, "", "&", "0:0@2 S[r&x;|&x]"},
        {1, "a", 0, "", "&", "1:1@1 SR[r&a|&a]"},
        {1, "a<", 0, "", "&", "1:1@1 R[r&a|&a]"},
        {1, "a b", 0, "", "&", "0:0@2 [r |&a]"},
        {1, "a&b;", 0, "", "&", "0:0@4 S[r&a&b;|&b]"},
        {1, "abc", 1, "S", "&", "1:1@1 SR[r&|&]"},
        {1, "", 0, "", "&", "1:1@0 SR[r&|&]"},
        {1, "ab;", 0, "R", "&", "1:0@1 R[r|&a]"},
        // The character behind "<".
        {2, "bc", 0, "", "", "3:0@0 [r|]"},
        {2, "b", 0, "", "", "3:0@0 [r|]"},
        {2, " c", 0, "", "", "5:0@1 [r|]"},
        {2, "\nc", 0, "", "", "5:0@1 [r|]"},
        {2, ".c", 0, "", "", "4:0@1 [r|]"},
        {2, "/c", 0, "", "", "6:0@1 [r|]"},
        {2, "/", 0, "", "", "6:0@0 S[r|]"},
        {2, "1c", 0, "", "", "7:0@1 [r1|]"},
        {2, "1", 0, "", "", "7:0@0 S[r1|]"},
        {2, ">c", 0, "", "", "2:0@1 S[r|]"},
        {2, ">", 0, "", "", "2:0@0 S[r|]"},
        {2, "b", 0, "S", "", "2:2@0 SR[r|]"},
        {2, "b", 1, "", "", "2:2@1 SR[r|]"},
        {2, "\r", 0, "", "", "3:0@0 [r|]"},
        // Names. The last character is never looked at.
        {3, "ab>", 0, "", "", "3:2@2 SR[rab|]"},
        {3, "ab>c", 0, "", "", "3:2@3 SR[rab|]"},
        {3, "b", 0, "", "", "3:2@1 SR[rb|]"},
        {3, "b\tc", 0, "", "u", "5:0@2 S[rb|u]"},
        {3, "b\nc>", 0, "", "u", "5:0@2 [rb|u\n]"},
        {3, "b.c>", 0, "", "", "4:0@2 [rb|]"},
        {3, "bc", 0, "S", "", "3:2@0 SR[r|]"},
        {3, "bcd>", 0, "R", "", "3:0@1 R[rb|]"},
        // Classes.
        {4, "a>b", 0, "", "", "4:2@2 SR[r|a] a;"},
        {4, "a.b>", 0, "", "", "4:2@4 SR[r|b] a; b;"},
        {4, "a b", 0, "", "", "5:0@2 [r|a] a;"},
        {4, "a\nb", 0, "", "", "4:0@2 R[r|\n] a;"},
        {4, "a\n", 0, "", "", "4:0@2 SR[r|\n] a;"},
        {4, "a.", 0, "", "", "4:2@2 SR[r|] a; ;"},
        {4, "ab", 1, "S", "u", "4:2@1 SR[r|u] u;"},
        {4, "", 0, "", "", "4:2@0 SR[r|] ;"},
        {4, "a ", 0, "", "", "5:0@2 S[r|a] a;"},
        {4, "ab>", 0, "R", "", "4:0@1 R[r|a]"},
        // Annotations.
        {5, " a b >c", 0, "", "u", "5:2@6 SR[r|u a b]"},
        {5, " ab", 0, "", "", "5:2@3 SR[r|ab]"},
        {5, "a\n>", 0, "", " ", "5:2@3 SR[r|a\n]"},
        {5, "ab", 1, "S", " u ", "5:2@1 SR[r|u]"},
        {5, " ab>", 0, "R", "", "5:0@1 R[r| ]"},
        // End tags and timestamps.
        {6, "b >c", 0, "", "u", "6:3@3 SR[rb |u]"},
        {6, "b\n", 0, "", "", "6:3@2 SR[rb\n|]"},
        {6, "b>", 0, "S", "", "6:3@0 SR[r|]"},
        {6, "bc>", 0, "R", "", "6:0@1 R[rb|]"},
        {7, "1:2>c", 0, "", "u", "7:4@4 SR[r1:2|u]"},
        {7, ">", 0, "", "", "7:4@1 SR[r|]"},
        {7, "", 0, "", "", "7:4@0 SR[r|]"},
        {7, "12>", 0, "R", "", "7:0@1 R[r1|]"},
    };
    for (const TokenizerCall& call : calls) {
        check(call);
    }
}

TEST(TokenizerContract, ALengthBelowZeroIsAnEmptyInput) {
    for (const int length : {-1, -2147483647}) {
        for (const int state : {0, 1, 2, 3, 4, 5, 6, 7}) {
            SCOPED_TRACE(state);
            TokenizerData data("abc", length);
            data.eState = static_cast<Cue::Tokenizer_State>(state);
            Cue cue;
            cue.eTokenizer(data);
            EXPECT_EQ(data.iPosition, 0);
            EXPECT_EQ(data.strResult.text, "");
            EXPECT_TRUE(data.fgStop && data.fgTokenReady);
        }
    }
}

TEST(TokenizerContract, HandlersAreCalledUntilTheTokenIsReady) {
    const struct {
        int state;
        bool ready;
        const char *input, *after;
    } cases[] = {
        {0, false, "<b.x y>z", "5:2@7 SR[b|xy] x;"},
        {0, true, "abc", "0:0@1 R[a|]"},  // asked only after a handler was called
        {6, true, "b>", "6:0@1 R[b|]"},
        {8, false, "abc", "8:0@0 R[|]"},  // no handler
        {2147483647, true, "abc", "2147483647:0@0 R[|]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        TokenizerData data(c.input, static_cast<int>(std::string(c.input).size()));
        data.eState = static_cast<Cue::Tokenizer_State>(c.state);
        data.fgTokenReady = c.ready;
        Cue cue;
        const Cue::Token_Type eType = cue.eTokenizer(data);
        EXPECT_EQ(eType, data.eTokenType);
        EXPECT_EQ(dump(data, cue), c.after);
    }
}

TEST(TokenizerContract, ANewTokenIsEmptyAndStartsInTheText) {
    const TokenizerData data("abc", 3);
    EXPECT_EQ(dump(data, Cue()), "0:0@0 [|]");
    EXPECT_STREQ(data.pcInput, "abc");
    EXPECT_EQ(data.iLength, 3);
}

}  // namespace
}  // namespace webvtt
