// Cue blocks: identifier, timing line, payload.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "base/errors.h"
#include "cue/cue.h"
#include "setting_dump.h"
#include "support/diagnostic_lines.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"
#include "tree_dump.h"

namespace webvtt {
namespace {

using support::error_line;
using support::error_lines;

/// A block, parsed. result: "1 2 root('x')" (times and tree), "false", or what was thrown.
struct ParsedBlock {
    explicit ParsedBlock(const std::string& block, unsigned size = 1) {
        output = support::output_of([&] {
            support::ExactText text(block);
            try {
                result = cue.fgParse(text.c_str(), size)
                             ? short_number(cue.dStartTime) + " " + short_number(cue.dEndTime) +
                                   " " + dump_tree(cue.pRootNode)
                             : "false";
            } catch (const InvalidArgumentException& error) {
                result = "argument: " + error.strGetMessage();
            } catch (const BadAllocException& error) {
                result = "memory: " + error.strGetMessage();
            } catch (const std::out_of_range& error) {
                result = std::string("range: ") + error.what();
            }
        });
    }

    Cue cue;
    std::string result;
    std::string output;
};

struct BlockCase {
    const char *block, *result;
    std::string output;
};

void check(const BlockCase& c) {
    SCOPED_TRACE(c.block);
    const ParsedBlock parsed(c.block);
    EXPECT_EQ(parsed.result, c.result);
    EXPECT_EQ(parsed.output, c.output);
}

TEST(Cue, StartsWithTheUsualSettings) {
    const Cue cue;
    EXPECT_TRUE(cue.vecApplicableClasses.empty());
    EXPECT_TRUE(cue.dqApplicableLanguages.empty());
    EXPECT_EQ(cue.dStartTime, 0.0);
    EXPECT_EQ(cue.dEndTime, 0.0);
    EXPECT_EQ(cue.pRootNode, nullptr);
    EXPECT_TRUE(cue.fgSnapToLines);
    EXPECT_EQ(std::string(cue.acRegionId, sizeof(cue.acRegionId)), std::string(17, '\0'));
    EXPECT_EQ(static_cast<int>(cue.eVertical), 0);
    EXPECT_EQ(static_cast<int>(cue.eLineAlign), 0);
    EXPECT_EQ(static_cast<int>(cue.ePositionAlign), 1);
    EXPECT_EQ(static_cast<int>(cue.eTextAlign), 1);
    EXPECT_EQ(cue.dLine, 100.0);
    EXPECT_EQ(cue.dSize, 100.0);
    EXPECT_EQ(cue.dPosition, 50.0);
    EXPECT_FALSE(cue.fgPositionSet);
    EXPECT_FALSE(cue.fgPositionAlignSet);
}

TEST(CueBlock, Accepted) {
    const BlockCase cases[] = {
        {"00:01.000 --> 00:02.000\nHello", "1 2 root('Hello')", ""},
        {"id\n00:01.000 --> 00:02.000\nHello", "1 2 root('Hello')", ""},
        {"00:01.000-->00:02.000\nx", "1 2 root('x')", ""},
        {"00:05.000 --> 00:01.000\nx", "5 1 root('x')", ""},
        {" \n00:01.000 --> 00:02.000\nx", "1 2 root('x')", ""},
        {"1 -> 2 \t:\n00:01.000 --> 00:02.000\nx", "1 2 root('x')", ""},
        {"00:01.000 --> 00:02.000\na\nb\n", "1 2 root('a\nb\n')", ""},
        {"00:01.000 --> 00:02.000\n\nx", "1 2 root('\nx')", ""},
        {"00:01.000 --> 00:02.000\n00:03.000 --> 00:04.000\n",
         "1 2 root('00:03.000 --> 00:04.000\n')", ""},
    };
    for (const BlockCase& c : cases) {
        check(c);
    }
}

TEST(CueBlock, SettingsOfTheTimingLineAreTaken) {
    const ParsedBlock parsed("00:01.000 --> 00:02.000   align:end    size:50%\nx");
    EXPECT_EQ(parsed.result, "1 2 root('x')");
    EXPECT_EQ(dump_settings(parsed.cue), "size=50 pos=100 posalign=2 align=2");
    EXPECT_EQ(parsed.output, "");
}

TEST(CueBlock, WithoutATimingLineItFails) {
    const std::string first = error_line("Invalid Input String of 1st Line, return FALSE");
    const std::string second = error_line("Invalid Input String of 2nd Line, return FALSE");
    const std::string settings = error_line("Parse Cue Time and Settings Failed");
    const BlockCase cases[] = {
        {"", "false", first},
        {"\n", "false", first},
        {"\n00:01.000 --> 00:02.000\nx", "false", first},
        {"x", "false", first},
        {"00:01.000 --> 00:02.000", "false", first},
        {"id\n", "false", second},
        {"id\n\n00:01.000 --> 00:02.000\nx", "false", second},
        {"id\n00:01.000 --> 00:02.000", "false", second},
        {"id\nno arrow here\nx", "false", settings},
        {"id1\nid2\n00:01.000 --> 00:02.000\nx", "false", settings},
    };
    for (const BlockCase& c : cases) {
        check(c);
    }
}

// A bad start time throws, a bad end time fails: two spellings that a tester can tell apart.
TEST(CueBlock, BadTimes) {
    const BlockCase cases[] = {
        {"abc --> 00:02.000\nx", "argument: Input pcLine is empty",
         error_line("Invalid Start Time Stamp <abc>")},
        {"id\nabc --> 00:02.000\nx", "argument: Input pcLine is empty",
         error_line("Invalid Start Time Stamp <abc>")},
        {"NOTE -->\n00:01.000 --> 00:02.000\nx", "argument: Input pcLine is empty",
         error_line("Invalid Start Time Stamp <NOTE>")},
        {"abc --> zz\nx", "argument: Input pcLine is empty",
         error_line("Invalid Start Time Stamp <abc>")},
        {"00:01.000 --> zz\nx", "false",
         error_lines({"Invalid End Time Stamp <zz>", "Parse Cue Time and Settings Failed"})},
        {"id\n00:01.000 --> zz\nx", "false",
         error_lines({"Invalid End Time Stamp <zz>", "Parse Cue Time and Settings Failed"})},
    };
    for (const BlockCase& c : cases) {
        check(c);
    }
}

TEST(CueBlock, ErrorsOfItsPartsPassThrough) {
    const BlockCase cases[] = {
        {"00:01.000 --> 00:02.000\n", "argument: Input pcLine is empty", ""},
        {"id\n00:01.000 --> 00:02.000\n", "argument: Input pcLine is empty", ""},
        {"00:01.000 --> 00:02.000\n<foo>", "memory: create new Node Failed\n",
         error_line("unexcepted start tag <foo> detected. Ignored")},
        {"00:01.000 --> 00:02.000 line:,end\nx", "range: basic_string::at", ""},
        {"00:01.000 --> 00:02.000 line:-\nx", "range: basic_string::at", ""},
    };
    for (const BlockCase& c : cases) {
        check(c);
    }
}

TEST(CueBlock, ItsSizeOnlyMustNotBeZero) {
    const std::string block = "00:01.000 --> 00:02.000\nHello";
    EXPECT_EQ(ParsedBlock(block, 1).result, "1 2 root('Hello')");
    EXPECT_EQ(ParsedBlock(block, 4294967295u).result, "1 2 root('Hello')");
    EXPECT_EQ(ParsedBlock(block, 0).result, "argument: Input pcLine is empty");
}

}  // namespace
}  // namespace webvtt
