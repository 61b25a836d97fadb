// A cue that is parsed for its text only: the same text, diagnostics and errors as with a tree.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "base/errors.h"
#include "cue/cue.h"
#include "setting_dump.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

/// What became of a block: its text and settings, "false", or what was thrown; and the output.
struct TextAndOutput {
    std::string result;
    std::string output;
};

template <typename Parse>
TextAndOutput text_of(Parse parse) {
    TextAndOutput outcome;
    outcome.output = support::output_of([&] {
        try {
            outcome.result = parse();
        } catch (const InvalidArgumentException& error) {
            outcome.result = "argument: " + error.strGetMessage();
        } catch (const BadAllocException& error) {
            outcome.result = "memory: " + error.strGetMessage();
        } catch (const std::out_of_range& error) {
            outcome.result = std::string("range: ") + error.what();
        }
    });
    return outcome;
}

std::string describe(const Cue& cue, std::string_view text) {
    return "'" + std::string(text) + "' " + short_number(cue.dStartTime) + " " +
           short_number(cue.dEndTime) + " " + dump_settings(cue);
}

TextAndOutput parse_for_text(const std::string& block) {
    support::ExactBlock exact(block);  // without a terminating zero
    return text_of([&]() -> std::string {
        Cue cue;
        const bool may_have_markup = block.find_first_of("<&") != std::string::npos;
        if (!throw_unless_read(cue.eParseForText({exact.data(), exact.size()},
                                                 may_have_markup ? exact.data() : nullptr))) {
            return "false";
        }
        EXPECT_EQ(cue.pRootNode, nullptr);
        EXPECT_TRUE(cue.vecApplicableClasses.empty());
        EXPECT_TRUE(cue.dqApplicableLanguages.empty());
        return describe(cue, cue.strPlainText());
    });
}

TextAndOutput parse_into_tree(const std::string& block) {
    support::ExactText exact(block);
    return text_of([&]() -> std::string {
        Cue cue;
        return cue.fgParse(exact.c_str(), 1) ? describe(cue, cue.strGetCueContent().text) : "false";
    });
}

void expect_same_text(const std::string& block) {
    const TextAndOutput text = parse_for_text(block);
    const TextAndOutput tree = parse_into_tree(block);
    ASSERT_EQ(text.result, tree.result) << testing::PrintToString(block);
    ASSERT_EQ(text.output, tree.output) << testing::PrintToString(block);
}

TEST(CueText, IsWhatTheTreeHolds) {
    const struct {
        const char *payload, *text;
    } cases[] = {
        {"Hello", "Hello"},
        {"a\nb\n", "a\nb\n"},
        {"a<b>c</b>d", "acd"},
        {"<ruby>ab<rt>cd</rt></ruby>", "abcd"},
        {"<v Bob>Hi</v>", "Hi"},
        {"<c.red.big>x</c>", "x"},
        {"<b>x</i>", "x"},
        {"a<00:00:01.000>b", "ab"},
        {"a &lt; b &amp; c", "a < b & c"},
        {"a & b", "a  b"},
        {"x<b>", "x>"},
        {"<b></b>x", "x"},
        {"<c.a\nb</c>x", "bx"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.payload);
        EXPECT_EQ(parse_for_text(kTiming + c.payload).result, "'" + std::string(c.text) + "' 1 2 ");
        expect_same_text(kTiming + c.payload);
    }
}

TEST(CueText, ErrorsAreTheSame) {
    const char* const blocks[] = {
        "",
        "\n",
        "x",
        "id\n",
        "id\n\n",
        "id\nno arrow\nx",
        "00:01.000 --> 00:02.000",
        "00:00:01.000 --> 00:00:02.000",
        "00:00:01.000 --> 00:00:02.000 align:end",
        "00:00:01.000 --> 00:00:02.000\n",
        "00:00:01.000 --> 00:00:02.000 line:-\nx",
        "00:01.000 --> 00:02.000\n",
        "bad --> 00:02.000\nx",
        "00:01.000 --> bad\nx",
        "00:01.000 --> 00:02.000 line:-\nx",
        "00:01.000 --> 00:02.000 line:5% region:fred size:x\n<b>x",
        "00:01.000 --> 00:02.000\na<foo>b",
        "00:01.000 --> 00:02.000\na<>b",
        "00:01.000 --> 00:02.000\na</foo>b<9>c</b>",
    };
    for (const char* block : blocks) {
        expect_same_text(block);
    }
}

// Every short payload of the characters that mean something.
TEST(CueText, IsTheSameForEveryShortPayload) {
    constexpr std::string_view alphabet = "<>/.&;\nbc1";
    constexpr std::size_t longest = 4;
    std::string block = kTiming;
    const auto check_all = [&](const auto& self) -> void {
        expect_same_text(block);
        if (block.size() == kTiming.size() + longest || testing::Test::HasFatalFailure()) {
            return;
        }
        for (const char c : alphabet) {
            block.push_back(c);
            self(self);
            block.pop_back();
        }
    };
    check_all(check_all);
}

}  // namespace
}  // namespace webvtt
