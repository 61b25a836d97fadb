// The cue, called in ways that no host can reach: with fields that were set before, with what is
// left of a timing line looked at, with payloads that hold zero bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/errors.h"
#include "cue/cue.h"
#include "setting_dump.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"
#include "tree_dump.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

constexpr double kUnset = -77.0;

TEST(CueContract, WhatIsLeftOfATimingLineSaysHowFarItWasRead) {
    const std::string bad_start = "Input pcLine is empty";
    const std::string bad_line = "basic_string::at";
    const struct {
        std::string line, outcome, left;
        double start, end;
    } cases[] = {
        {"", "false", "", kUnset, kUnset},
        {" no arrow ", "false", " no arrow ", kUnset, kUnset},
        {"x-->  00:02.000 x ", bad_start, "00:02.000 x", kUnset, kUnset},
        {"00:99.000 --> 00:02.000 x", bad_start, "00:02.000 x", 0, kUnset},
        {"-->", bad_start, "", kUnset, kUnset},
        {"00:01.000 --> zz a b ", "false", "a b", 1, kUnset},
        {"00:01.000 --> 00:99.000", "false", "", 1, 0},
        {"00:01.000 -->", "false", "", 1, kUnset},
        {"00:01.000 --> 00:02.000", "true", "", 1, 2},
        {"00:01.000 --> 00:02.000 ", "true", "", 1, 2},
        {"00:01.000 --> 00:02.000 size:5%", "true", "size:5%", 1, 2},
        {"00:01.000 --> 00:02.000  a  size:5%  ", "true", "size:5%", 1, 2},
        {"00:00:01.000 --> 00:00:02.000 a b", "true", "b", 1, 2},
        {"00:01.000 --> 00:02.000 a line:- b c", bad_line, "line:- b c", 1, 2},
        {"00:01.000 --> 00:02.000 line:,x", bad_line, "line:,x", 1, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        Cue cue;
        cue.dStartTime = cue.dEndTime = kUnset;
        WebvttString line(c.line);
        EXPECT_EQ(outcome_of([&] { return cue.fgParseCueTimeAndSettings(line); }), c.outcome);
        EXPECT_EQ(line.text, c.left);
        EXPECT_EQ(cue.dStartTime, c.start);
        EXPECT_EQ(cue.dEndTime, c.end);
    }
}

/// Cues with every combination of fields that a timing line may find, each of a few values.
std::vector<std::vector<const char*>> starting_states() {
    const std::vector<std::vector<const char*>> choices = {
        {"", "align:start", "align:end", "align:left", "align:right"},
        {"", "position:30%", "position:30%,end", "position:0%,start"},
        {"", "line:50%", "line:7,end"},
        {"", "size:40%"},
        {"", "vertical:lr"},
        {"", "region:abcdefghijklmnop"},
    };
    std::vector<std::vector<const char*>> states = {{}};
    for (const auto& choice : choices) {
        std::vector<std::vector<const char*>> longer;
        for (const auto& state : states) {
            for (const char* const item : choice) {
                longer.push_back(state);
                longer.back().push_back(item);
            }
        }
        states = std::move(longer);
    }
    return states;
}

std::string dump_all(const Cue& cue) {
    return short_number(cue.dStartTime) + " " + short_number(cue.dEndTime) + " " +
           dump_settings(cue) + " " + std::string(cue.acRegionId, sizeof cue.acRegionId);
}

// The usual form of a timing line is read in place, any other by parts. Both leave the same cue,
// whatever was in it before.
TEST(CueContract, UsualTimingLineAndAnyOtherLeaveTheSameCue) {
    const struct {
        const char *usual, *other;
    } pairs[] = {
        {"00:00:01.000 --> 00:00:02.000", "00:01.000  --> 00:02.000"},
        {"00:01.000 --> 00:02.000", "00:01.000  --> 00:02.000"},
        {"00:00:01.000 --> 00:00:02.000 ", "00:01.000  --> 00:02.000 "},
        {"00:00:01.000 --> 00:00:02.000 align:end", "00:01.000  --> 00:02.000 align:end"},
        {"00:00:01.000 --> 00:00:02.000 line:-", "00:01.000  --> 00:02.000 line:-"},
    };
    const auto states = starting_states();
    ASSERT_EQ(states.size(), 480u);
    for (const auto& pair : pairs) {
        for (const auto& state : states) {
            Cue cues[3];
            std::string dumps[3];
            const std::string blocks[] = {pair.usual + "\nx"s, "id\n"s + pair.usual + "\nx",
                                          pair.other + "\nx"s};
            for (int way = 0; way < 3; ++way) {
                for (const char* const item : state) {
                    cues[way].vParseCueSettingItem(item);
                }
                const std::string outcome =
                    outcome_of([&] { return cues[way].fgParse(blocks[way].c_str(), 1); });
                dumps[way] = outcome + " " + dump_all(cues[way]);
            }
            ASSERT_EQ(dumps[0], dumps[2]) << testing::PrintToString(state);
            ASSERT_EQ(dumps[1], dumps[2]) << testing::PrintToString(state);
        }
    }
}

// A zero byte ends the payload, but not the token that it stands in.
TEST(CueContract, PayloadsMayHoldZeroBytes) {
    const struct {
        std::string payload, tree;
    } cases[] = {
        {"abc\0"s, "root('abc\0')"s},         {"abc\0zz"s, "root('abc\0zz')"s},
        {"abc\0zz<b>x"s, "root('abc\0zz')"s}, {"\0abc"s, "root('\0abc')"s},
        {"\0<b>x"s, "root('\0')"s},           {"\0"s, "root('\0')"s},
        {"<b>\0abc"s, "root(b())"},           {"<b>a\0bc</b>d"s, "root(b('a\0bc'))"s},
        {"<v a\0b>cd"s, "root(v())"},         {"<v a\0b>"s, "root(v())"},
        {"<c.a\0b>cd"s, "root(c())"},         {"<b>x</b>\0y"s, "root(b('x'))"},
        {"<b>x</b\0>y"s, "root(b('x'))"},     {"a&amp;\0&lt;b<i>c"s, "root('a&\0<b')"s},
        {"a&\0b<i>c"s, "root('a\0b')"s},      {"<00:00:01.000>\0y"s, "root(time=0)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.payload));
        Cue cue;
        support::ExactBlock payload(c.payload);
        EXPECT_EQ(outcome_of([&] { return cue.fgParseCuePayload(payload.data(), payload.size()); }),
                  "true");
        EXPECT_EQ(dump_tree(cue.pRootNode), c.tree);
    }
}

TEST(CueContract, PayloadsEndAtTheirLength) {
    Cue cue;
    EXPECT_TRUE(cue.fgParseCuePayload("abc<b>d", 3));
    EXPECT_TRUE(cue.fgParseCuePayload("abc<b>d", 6));
    EXPECT_EQ(dump_tree(cue.pRootNode), "root('abc' 'abc' b('>'))");
    EXPECT_EQ(outcome_of([&] { return cue.fgParseCuePayload("abc", 0); }), "Input pcLine is empty");
    EXPECT_EQ(outcome_of([&] { return cue.fgParseCuePayload(nullptr, 3); }),
              "Input pcLine is empty");
}

/// Notes, when it is destroyed, whether it still has a parent.
class Orphan : public WebvttNode {
  public:
    explicit Orphan(std::string& log) : m_log(log) {}
    ~Orphan() override { m_log += prGetParent() == nullptr ? 'o' : 'p'; }

  private:
    std::string& m_log;
};

TEST(CueContract, ANodeHasNoParentWhenItIsDestroyed) {
    std::string log;
    auto* const root = new Orphan(log);
    auto* const child = new Orphan(log);
    root->vAppendNode(child);
    root->vAppendNode(new Orphan(log));
    child->vAppendNode(new Orphan(log));
    Cue().vReleaseNode(root);
    EXPECT_EQ(log, "oooo");
}

}  // namespace
}  // namespace webvtt
