// Timing lines: times, the list of settings, and what is derived from the settings.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "base/errors.h"
#include "cue/cue.h"
#include "setting_dump.h"
#include "support/diagnostic_lines.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

using support::error_line;

/// What became of a timing line: "1 2", "false", or "throws" with the message.
struct Timing {
    explicit Timing(const std::string& text) {
        WebvttString line(text);
        output = support::output_of([&] {
            try {
                result = cue.fgParseCueTimeAndSettings(line)
                             ? short_number(cue.dStartTime) + " " + short_number(cue.dEndTime)
                             : "false";
            } catch (const InvalidArgumentException& error) {
                result = "throws " + error.strGetMessage();
            }
        });
    }

    Cue cue;
    std::string result;
    std::string output;
};

TEST(TimingLine, Times) {
    const struct {
        const char *line, *result;
        std::string output;
    } cases[] = {
        {"00:01.000 --> 00:02.000", "1 2", ""},
        {"00:01.000-->00:02.000", "1 2", ""},
        {"   00:01.000   -->   00:02.000   ", "1 2", ""},
        {"00:05.000 --> 00:01.000", "5 1", ""},
        {"01:00:00.500 --> 100:00:00.000", "3600.5 360000", ""},
        {"no arrow here", "false", ""},
        {"00:01.000 -> 00:02.000", "false", ""},
        {"00:01.000 -- > 00:02.000", "false", ""},
        {"", "false", ""},
        {"00:01.000 --> zz", "false", error_line("Invalid End Time Stamp <zz>")},
        {"00:01.000 -->", "false", error_line("Invalid End Time Stamp <>")},
        {"00:01.000 -->\t00:02.000", "false", error_line("Invalid End Time Stamp <\t00:02.000>")},
        {"00:01.000 --> 00:02.000\tx:y", "false",
         error_line("Invalid End Time Stamp <00:02.000\tx:y>")},
        {"00:01.000 --> 00:02.000-->00:03.000", "false",
         error_line("Invalid End Time Stamp <00:02.000-->00:03.000>")},
        {"00:01.000 --> 00:02.000 --> 00:03.000", "1 2", error_line("Item is Empty")},
        {"00:01.000 --> 00:02.000 00:03.000", "1 2", ""},
        {"00:01.000 --> 00:0x.000", "false",
         "input is 0x.000\nNot a valid data string\n" +
             error_line("Invalid End Time Stamp <00:0x.000>")},
        {"abc --> 00:02.000", "throws Input pcLine is empty",
         error_line("Invalid Start Time Stamp <abc>")},
        {"  a b  --> zz", "throws Input pcLine is empty",
         error_line("Invalid Start Time Stamp <a b>")},
        {"-->", "throws Input pcLine is empty", error_line("Invalid Start Time Stamp <>")},
        {"00:01.000\t--> 00:02.000", "throws Input pcLine is empty",
         error_line("Invalid Start Time Stamp <00:01.000\t>")},
        {"00:60.000 --> 00:02.000", "throws Input pcLine is empty",
         error_line("Invalid Start Time Stamp <00:60.000>")},
        {"00:-1.000 --> 00:02.000", "throws Input pcLine is empty",
         "input is -1.000\nNot a valid data string\n" +
             error_line("Invalid Start Time Stamp <00:-1.000>")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const Timing timing(c.line);
        EXPECT_EQ(timing.result, c.result);
        EXPECT_EQ(timing.output, c.output);
    }
}

struct SettingsCase {
    std::string settings, changed, output;
};

void check(const SettingsCase& c) {
    SCOPED_TRACE(c.settings);
    const Timing timing("00:01.000 --> 00:02.000 " + c.settings);
    EXPECT_EQ(timing.result, "1 2");
    EXPECT_EQ(dump_settings(timing.cue), c.changed);
    EXPECT_EQ(timing.output, c.output);
}

TEST(TimingLine, SettingsAreSeparatedByAnyNumberOfSpaces) {
    const SettingsCase cases[] = {
        {"", "", ""},
        {"size:50%", "size=50", ""},
        {"  align:end    size:50%  ", "size=50 pos=100 posalign=2 align=2", ""},
        {"size:50%\tline:5", "", error_line("Invalid SIZE value string 50%\tline:5")},
        {"abc ab: :x size:x size:20%", "size=20",
         support::error_lines(
             {"Item is Empty", "Item ab value is empty!", "Invalid SIZE value string x"})},
        {"a  b   c    d", "", ""},
    };
    for (const SettingsCase& c : cases) {
        check(c);
    }
}

TEST(TimingLine, PositionFollowsTheTextAlignmentUnlessItIsGiven) {
    const SettingsCase cases[] = {
        {"align:start", "pos=0 posalign=0 align=0", ""},
        {"align:left", "pos=0 posalign=0 align=3", ""},
        {"align:center", "pos=0 posalign=0 align=0", ""},
        {"align:middle", "", ""},
        {"align:end", "pos=100 posalign=2 align=2", ""},
        {"align:right", "pos=100 posalign=2 align=4", ""},
        {"position:30%", "pos=30 posalign=0 posset=1", ""},
        {"position:30% align:middle", "pos=30 posalign=0 posset=1", ""},
        {"position:30% align:end", "pos=30 posalign=2 posset=1 align=2", ""},
        {"align:right position:30%,foo", "pos=30 posalign=2 posset=1 align=4", ""},
        {"align:left position:30%,end", "pos=30 posalign=2 posset=1 posalignset=1 align=3", ""},
        {"position:30%,start align:end", "pos=30 posalign=0 posset=1 posalignset=1 align=2", ""},
        {"position:30%,middle align:start", "pos=30 posset=1 posalignset=1 align=0", ""},
        {"position:120%", "", ""},
        {"position:120% align:left", "pos=0 posalign=0 align=3", ""},
        {"position:120%,end align:end", "pos=100 posalign=2 align=2", ""},
    };
    for (const SettingsCase& c : cases) {
        check(c);
    }
}

TEST(TimingLine, RegionSurvivesOnlyBesideAPercentageLineWithUsualSizeAndDirection) {
    const SettingsCase cases[] = {
        {"region:fred", "", ""},
        {"region:abcdefghijklmnopqrst", "", ""},
        {"region:fred line:5", "line=5", ""},
        {"region:fred line:50%", "line=50 snap=0 region=fred", ""},
        {"line:50% region:abcdefghijklmnopqrst", "line=50 snap=0 region=abcdefghijklmnop", ""},
        {"region:fred line:100% size:100%", "snap=0 region=fred", ""},
        {"region:fred line:50% size:99.9%", "line=50 snap=0 size=99.9", ""},
        {"region:fred line:50% vertical:lr", "vertical=1 line=50 snap=0", ""},
        {"region:fred line:50% vertical:xx", "line=50 snap=0 region=fred", ""},
        {"region:fred line:50% line:%", "line=50", ""},
        {"region:fred line:50% align:end", "line=50 snap=0 pos=100 posalign=2 align=2 region=fred",
         ""},
    };
    for (const SettingsCase& c : cases) {
        check(c);
    }
}

TEST(TimingLine, ClearingTheRegionClearsAllOfIt) {
    Cue cue;
    std::fill(std::begin(cue.acRegionId), std::end(cue.acRegionId), 'x');
    WebvttString line("00:01.000 --> 00:02.000");
    ASSERT_TRUE(cue.fgParseCueTimeAndSettings(line));
    EXPECT_EQ(std::string(cue.acRegionId, sizeof(cue.acRegionId)), std::string(17, '\0'));
}

TEST(TimingLine, ForgetsThatAPositionWasGivenBefore) {
    Cue cue;
    cue.fgPositionSet = true;
    cue.fgPositionAlignSet = true;
    WebvttString line("00:01.000 --> 00:02.000 align:end");
    ASSERT_TRUE(cue.fgParseCueTimeAndSettings(line));
    EXPECT_EQ(dump_settings(cue), "pos=100 posalign=2 align=2");
}

/// The same line at the head of a block, where its usual form is read in place.
std::string result_in_block(const std::string& line, const Timing& alone) {
    Cue cue;
    std::string result = "false";
    const std::string output = support::output_of([&] {
        try {
            if (cue.fgParse((line + "\nx\n").c_str(), 1)) {
                result = short_number(cue.dStartTime) + " " + short_number(cue.dEndTime);
            }
        } catch (const InvalidArgumentException& error) {
            result = "throws " + error.strGetMessage();
        }
    });
    const bool failed = result == "false";
    EXPECT_EQ(output,
              alone.output + (failed ? error_line("Parse Cue Time and Settings Failed") : ""));
    EXPECT_EQ(dump_settings(cue), dump_settings(alone.cue));
    return result;
}

TEST(TimingLine, UsualFormAndItsNeighboursReadAlikeInABlock) {
    const struct {
        const char *line, *result;
    } cases[] = {
        {"00:00:01.000 --> 00:00:02.000", "1 2"},
        {"10:59:59.125 --> 11:00:00.500", "39599.125 39600.5"},
        {"00:00:01.000 --> 00:00:02.000 ", "1 2"},
        {"00:00:01.000 --> 00:00:02.000 align:end", "1 2"},
        {"00:00:01.000 --> 00:00:02.000   line:5%   size:50%  ", "1 2"},
        {"00:00:01.000 --> 00:00:02.000 size:50% align:end line:-2", "1 2"},
        {"00:00:01.000 --> 00:00:02.000 position:10%,end region:a", "1 2"},
        {"00:00:01.000 --> 00:00:02.000 align:a:end :x xx a: size:5%", "1 2"},
        {"00:00:01.000 --> 00:00:02.000 --> align:end", "1 2"},
        {"00:00:01.000 --> 00:00:02.000\talign:end", "false"},
        {"00:00:01.000 --> 00:00:02.000x", "false"},
        {"00:00:01.000 --> 00:00:02.00", "false"},
        {" 00:00:01.000 --> 00:00:02.000 align:end", "1 2"},
        {"00:00:01.000  --> 00:00:02.000 align:end", "1 2"},
        {"00:00:01.000-->00:00:02.000 align:end", "1 2"},
        {"00:00:01.000 ==> 00:00:02.000", "false"},
        {"00:00:01.000 --| 00:00:02.000", "false"},
        {"00:00:01.000 -->  00:00:02.000 align:end", "1 2"},
        {"00:01.000 --> 00:02.000 align:end", "1 2"},
        {"00:60:01.000 --> 00:00:02.000", "throws Input pcLine is empty"},
        {"00:00:01.000 --> 00:00:60.000", "false"},
        {"100:00:01.000 --> 100:00:02.000", "360001 360002"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const Timing alone(c.line);
        EXPECT_EQ(alone.result, c.result);
        EXPECT_EQ(result_in_block(c.line, alone), c.result);
    }
}

}  // namespace
}  // namespace webvtt
