// Single cue settings.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "cue/cue.h"
#include "setting_dump.h"
#include "support/diagnostic_lines.h"
#include "support/stdout_capture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using support::error_line;

struct ItemCase {
    std::string items;  // separated by spaces, each handed over on its own
    std::string changed, output;
};

void take_items(Cue& cue, const std::string& items) {
    std::size_t begin = 0;
    while (begin <= items.size()) {
        const std::size_t end = std::min(items.find(' ', begin), items.size());
        cue.vParseCueSettingItem(WebvttString(items.substr(begin, end - begin)));
        begin = end + 1;
    }
}

void check(const ItemCase& c) {
    SCOPED_TRACE(c.items);
    Cue cue;
    EXPECT_EQ(support::output_of([&] { take_items(cue, c.items); }), c.output);
    EXPECT_EQ(dump_settings(cue), c.changed);
}

TEST(CueSettings, ItemsThatAreNoSettings) {
    const ItemCase cases[] = {
        {"", "", ""},
        {":", "", ""},
        {"a:", "", ""},
        {":a", "", ""},
        {"ab", "", ""},
        {"abc", "", error_line("Item is Empty")},
        {"align", "", error_line("Item is Empty")},
        {":abc", "", error_line("Item is Empty")},
        {"::x", "", error_line("Item is Empty")},
        {"ab:", "", error_line("Item ab value is empty!")},
        {"vertical:", "", error_line("Item vertical value is empty!")},
        {"foo:bar", "", ""},
        {"foo:", "", error_line("Item foo value is empty!")},
        {"Align:end", "", ""},
        {"aligned:end", "", ""},
        {"alig:end", "", ""},
        {"\talign:end", "", ""},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, Vertical) {
    const ItemCase cases[] = {
        {"vertical:lr", "vertical=1", ""},
        {"vertical:rl", "vertical=2", ""},
        {"vertical:LR", "", ""},
        {"vertical:lr ", "vertical=1", ""},
        {"vertical:lrx", "", ""},
        {"vertical:rl vertical:foo", "vertical=2", ""},
        {"vertical:rl vertical:lr", "vertical=1", ""},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, LineNumbers) {
    const ItemCase cases[] = {
        {"line:-1", "line=-1", ""},
        {"line:0", "line=0", ""},
        {"line:-0", "line=-0", ""},
        {"line:1.5", "line=1.5", ""},
        {"line:-2.5,middle", "line=-2.5 linealign=1", ""},
        {"line:5,start", "line=5", ""},
        {"line:5,end", "line=5 linealign=2", ""},
        {"line:5,center", "line=5", ""},
        {"line:5,end,end", "line=5", ""},
        {"line:5,end line:6", "line=6", ""},
        {"line:3000000000", "line=-1294967296", ""},
        {"line:-3000000000", "line=1294967296", ""},
        {"line:--1", "", trace_of("-1")},
        {"line:+1", "", trace_of("+1")},
        {"line:abc", "", trace_of("abc")},
        {"line:abc,end", "", trace_of("abc")},
        {"line:5x", "", trace_of("5x")},
        {"line:-x", "", trace_of("x")},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, LinePercentages) {
    const auto out_of_range = [](const char* value) {
        return "[WEBVTT] ERR:: dPos " + std::string(value) + " out of range [0.0, 100.0]\n\n";
    };
    const ItemCase cases[] = {
        {"line:50%", "line=50 snap=0", ""},
        {"line:50%,end", "line=50 snap=0 linealign=2", ""},
        {"line:0%", "line=0 snap=0", ""},
        {"line:-0%", "line=-0 snap=0", ""},
        {"line:100%", "snap=0", ""},
        {"line:-5%", "", out_of_range("-5.000000")},
        {"line:100.5%", "", out_of_range("100.500000")},
        {"line:3000000000%", "", out_of_range("-1294967296.000000")},
        {"line:-3000000000%", "", out_of_range("1294967296.000000")},
        {"line:%", "", ""},
        {"line:-%", "", ""},
        {"line:a%", "", trace_of("a")},
        {"line:%5", "", trace_of("%5")},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, DroppedLineStillUndoesAnEarlierPercentagesFlag) {
    const ItemCase cases[] = {
        {"line:50%,end line:abc", "line=50 linealign=2", trace_of("abc")},
        {"line:50% line:%", "line=50", ""},
        {"line:50% line:101%", "line=50",
         error_line("dPos 101.000000 out of range [0.0, 100.0]\n")},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, LineWithoutANumberIsAnError) {
    for (const char* item : {"line:,end", "line:,", "line:-", "line:-,end"}) {
        SCOPED_TRACE(item);
        Cue cue;
        take_items(cue, "line:50%");
        std::string what = "nothing was thrown";
        EXPECT_EQ(support::output_of([&] {
                      try {
                          take_items(cue, item);
                      } catch (const std::out_of_range& error) {
                          what = error.what();
                      }
                  }),
                  "");
        EXPECT_EQ(what, "basic_string::at");
        EXPECT_EQ(dump_settings(cue), "line=50");  // the flag was reset before
    }
}

TEST(CueSettings, Size) {
    const ItemCase cases[] = {
        {"size:50%", "size=50", ""},
        {"size:150%", "size=150", ""},
        {"size:12.5%", "size=12.5", ""},
        {"size:3000000000%", "size=-1294967296", ""},
        {"size:abc", "", error_line("Invalid SIZE value string abc")},
        {"size:50", "", error_line("Invalid SIZE value string 50")},
        {"size:%", "", error_line("Invalid SIZE value string %")},
        {"size:50%,end", "", error_line("Invalid SIZE value string 50%,end")},
        {"size:-5%", "", trace_of("-5") + error_line("Invalid SIZE value string -5%")},
        {"size:10% size:x%", "size=10", trace_of("x") + error_line("Invalid SIZE value string x%")},
        {"size:10% size:20%", "size=20", ""},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, Position) {
    const ItemCase cases[] = {
        {"position:30%", "pos=30 posalign=0 posset=1", ""},
        {"position:30%,start", "pos=30 posalign=0 posset=1 posalignset=1", ""},
        {"position:30%,middle", "pos=30 posset=1 posalignset=1", ""},
        {"position:30%,end", "pos=30 posalign=2 posset=1 posalignset=1", ""},
        {"position:30%,center", "pos=30 posalign=0 posset=1", ""},
        {"position:30%,line-left", "pos=30 posalign=0 posset=1", ""},
        {"position:30%,START", "pos=30 posalign=0 posset=1", ""},
        {"position:30%,", "pos=30 posalign=0 posset=1", ""},
        {"position:30%,end,end", "pos=30 posalign=0 posset=1", ""},
        {"position:0%", "pos=0 posalign=0 posset=1", ""},
        {"position:100%", "pos=100 posalign=0 posset=1", ""},
        {"position:50%", "posalign=0 posset=1", ""},
        {"position:120%", "", ""},
        {"position:100.1%,end", "", ""},
        {"position:3000000000%", "", ""},
        {"position:30", "", ""},
        {"position:,end", "", ""},
        {"position:-5%", "", trace_of("-5")},
        // Each field keeps what a later item does not set.
        {"position:30%,end position:40%", "pos=40 posalign=0 posset=1 posalignset=1", ""},
        {"position:30%,end position:120%,start", "pos=30 posalign=2 posset=1 posalignset=1", ""},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, Align) {
    const ItemCase cases[] = {
        {"align:start", "align=0", ""},
        {"align:middle", "", ""},
        {"align:end", "align=2", ""},
        {"align:left", "align=3", ""},
        {"align:right", "align=4", ""},
        {"align:center", "align=0", ""},
        {"align:END", "align=0", ""},
        {"align:end:x", "align=0", ""},
        {"align:end align:left", "align=3", ""},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
}

TEST(CueSettings, Region) {
    const ItemCase cases[] = {
        {"region:fred", "region=fred", ""},
        {"region:abcdefghijklmnop", "region=abcdefghijklmnop", ""},
        {"region:abcdefghijklmnopqrst", "region=abcdefghijklmnop", ""},
        {"region:longidentifier region:ab", "region=abngidentifier", ""},
        {"region:a:b", "region=a:b", ""},
    };
    for (const ItemCase& c : cases) {
        check(c);
    }
    Cue cue;
    std::memset(cue.acRegionId, 'x', sizeof(cue.acRegionId));
    take_items(cue, "region:a");
    EXPECT_EQ(std::string(cue.acRegionId, 17), "axxxxxxxxxxxxxxx" + std::string(1, '\0'));
}

TEST(CueSettings, Keywords) {
    const struct {
        const char* keyword;
        int text, position, line;
    } cases[] = {
        {"start", 0, 0, 0},   {"middle", 1, 1, 1}, {"end", 2, 2, 2},        {"left", 3, 0, 0},
        {"right", 4, 0, 0},   {"center", 0, 0, 0}, {"Middle", 0, 0, 0},     {"", 0, 0, 0},
        {"middle ", 0, 0, 0}, {"end,", 0, 0, 0},   {"line-right", 0, 0, 0},
    };
    const Cue cue;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.keyword);
        const WebvttString keyword(c.keyword);
        EXPECT_EQ(static_cast<int>(cue.eMapTextAlign(keyword)), c.text);
        EXPECT_EQ(static_cast<int>(cue.eMapTextPositionAlign(keyword)), c.position);
        EXPECT_EQ(static_cast<int>(cue.eMapLineAlign(keyword)), c.line);
    }
}

TEST(CueSettings, RegionGoesWithAnySizeButAHundred) {
    const struct {
        const char* timing_line;
        const char* region;
    } cases[] = {
        {"00:01.000 --> 00:02.000 line:50% region:here", "here"},
        {"00:01.000 --> 00:02.000 line:50% region:here size:100%", "here"},
        {"00:01.000 --> 00:02.000 line:50% region:here size:99%", ""},
        {"00:01.000 --> 00:02.000 line:50% region:here size:150%", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.timing_line);
        Cue cue;
        WebvttString line(c.timing_line);
        EXPECT_TRUE(cue.fgParseCueTimeAndSettings(line));
        EXPECT_STREQ(cue.acRegionId, c.region);
    }
}

}  // namespace
}  // namespace webvtt
