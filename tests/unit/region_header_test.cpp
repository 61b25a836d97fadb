// "Region:" header lines, and the base of all header objects.
#include "header/region_header.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "base/errors.h"
#include "header/metadata_header.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"
#include "usual_values.h"

namespace webvtt {
namespace {

TEST(MetaDataHeader, BaseHasNoKindAndParsesNothing) {
    MetaDataHeader header;
    EXPECT_EQ(header.eType(), -1);
    EXPECT_EQ(support::output_of([&] {
                  header.vParse("Region: id=x\n");
                  header.vParse(nullptr);
              }),
              "");
}

/// "id=fred width=40 lines=3 region=0,100 viewport=10,90 scroll=1", without what a new header has.
std::string dump_region(const RegionMetaDataHeader& region) {
    std::string dump;
    const auto add = [&dump](const char* name, const std::string& value, const std::string& usual) {
        if (value != usual) {
            dump += (dump.empty() ? "" : " ") + std::string(name) + "=" + value;
        }
    };
    const auto number = [](double value) {
        char text[32];
        std::snprintf(text, sizeof(text), "%g", value);
        return std::string(text);
    };
    const auto pair = [&](double x, double y) { return number(x) + "," + number(y); };
    add("id", std::string(region.acId, strnlen(region.acId, sizeof(region.acId))), "");
    add("width", number(region.dWidth), "0");
    add("lines", std::to_string(region.uLines), "0");
    add("region", pair(region.dRegionAnchorX, region.dRegionAnchorY), "0,100");
    add("viewport", pair(region.dViewportAnchorX, region.dViewportAnchorY), "0,100");
    add("scroll", std::to_string(region.fgScroll), "0");
    return dump;
}

struct RegionCase {
    std::string line, expected, output;
};

void check(const RegionCase& c) {
    SCOPED_TRACE(testing::PrintToString(c.line));
    RegionMetaDataHeader region;
    const std::string output = support::output_of([&] {
        support::ExactText line(c.line);
        region.vParse(line.c_str());
    });
    EXPECT_EQ(dump_region(region), c.expected);
    EXPECT_EQ(output, c.output);
}

TEST(RegionHeader, StartsWithZerosAndTwoAnchors) {
    RegionMetaDataHeader region;
    EXPECT_EQ(region.eType(), 0);
    EXPECT_EQ(region.fgScroll, 0u);
    EXPECT_EQ(std::string(region.acId, 16), std::string(16, '\0'));
    EXPECT_EQ(region.uLines, 0u);
    EXPECT_EQ(region.dWidth, 0.0);
    EXPECT_EQ(region.dRegionAnchorX, 0.0);
    EXPECT_EQ(region.dRegionAnchorY, 100.0);
    EXPECT_EQ(region.dViewportAnchorX, 0.0);
    EXPECT_EQ(region.dViewportAnchorY, 100.0);
}

TEST(RegionHeader, ItemsAreSeparatedBySpaces) {
    const RegionCase cases[] = {
        {"Region: id=fred width=40% lines=3 regionanchor=0%,100% viewportanchor=10%,90% "
         "scroll=up\n",
         "id=fred width=40 lines=3 viewport=10,90 scroll=1", ""},
        {"Region:", "", ""},
        {"Region:\n", "", ""},
        {"Region:   \n", "", ""},
        {"Region:id=a", "id=a", ""},
        {"Region:   id=a    width=5%   ", "id=a width=5", ""},
        {"Region: id=a\twidth=10%", "id=a\twidth=10%", ""},
        {"Region: id=a\r\n", "id=a\r", ""},  // only the line feed is removed
        {"Region: id=a\n\n", "id=a\n", ""},  // and only one
        {"xxxxxxxid=a", "id=a", ""},         // whatever stands in the keyword's place
        {"Reg", "", ""},
        {"\n", "", ""},
        {"Region: ID=x", "", ""},
        {"Region: id x", "", ""},
        {"Region: =x id", "", ""},
        {"Region: foo=bar id=b", "id=b", ""},
    };
    for (const RegionCase& c : cases) {
        check(c);
    }
}

TEST(RegionHeader, Id) {
    const RegionCase cases[] = {
        {"Region: id=abcdefghijklmnop", "id=abcdefghijklmnop", ""},
        {"Region: id=abcdefghijklmnopqrst", "id=abcdefghijklmnop", ""},
        {"Region: id=longidentifier id=ab", "id=abngidentifier", ""},
        {"Region: id=ab id=longidentifier", "id=longidentifier", ""},
        {"Region: id=fred id=", "id=fred", ""},
        {"Region: id=a=b", "id=a=b", ""},
    };
    for (const RegionCase& c : cases) {
        check(c);
    }
}

TEST(RegionHeader, WidthAndLines) {
    const RegionCase cases[] = {
        {"Region: width=250%", "width=250", ""},
        {"Region: width=40", "", ""},
        {"Region: width=abc%", "", trace_of("abc")},
        {"Region: width=40% width=x", "", ""},  // an invalid value leaves 0
        {"Region: width=40% width=", "", ""},
        {"Region: lines=2.9", "lines=2", ""},
        {"Region: lines=-1", "", trace_of("-1")},
        {"Region: lines=5 lines=x", "", trace_of("x")},
        {"Region: lines=5 lines=", "", ""},
        {"Region: lines=2147483647", "lines=2147483647", ""},
        {"Region: lines=3000000000", "", ""},  // read as negative
        {"Region: lines=0." + std::string(31, '0') + "1", "lines=4294967295", ""},  // infinity
        {"Region: lines=0." + std::string(32, '0'), "", ""},                        // not a number
    };
    for (const RegionCase& c : cases) {
        check(c);
    }
}

TEST(RegionHeader, Anchors) {
    const RegionCase cases[] = {
        {"Region: regionanchor=150%,200%", "region=150,200", ""},
        {"Region: regionanchor=50%", "", ""},
        {"Region: regionanchor=a,b", "region=0,0", ""},
        {"Region: regionanchor=1%,2% regionanchor=3%", "region=1,2", ""},
        {"Region: regionanchor=1%,2% regionanchor=", "region=1,2", ""},
        {"Region: viewportanchor=1%,2%", "viewport=1,2", ""},
        {"Region: viewportanchor=,2%", "", ""},
        {"Region: viewportanchor=1%,x%", "viewport=1,0", trace_of("x")},
    };
    for (const RegionCase& c : cases) {
        check(c);
    }
}

TEST(RegionHeader, Scroll) {
    const RegionCase cases[] = {
        {"Region: scroll=up", "scroll=1", ""},
        {"Region: scroll=UP", "", ""},
        {"Region: scroll=up scroll=none", "", ""},
        {"Region: scroll=up scroll=", "", ""},
        {"Region: scroll=upp", "", ""},
    };
    for (const RegionCase& c : cases) {
        check(c);
    }
}

TEST(RegionHeader, ItemIsRecognisedByItsName) {
    const struct {
        const char* item;
        bool expected;
    } cases[] = {
        {"id=", true},
        {"id=x", true},
        {"width=x", true},
        {"lines=", true},
        {"scroll=", true},
        {"regionanchor=", true},
        {"viewportanchor=,", true},
        {"", false},
        {"=", false},
        {"id", false},
        {"width", false},
        {"x=", false},
        {"=abc", false},
        {"abc", false},
        {"ID=x", false},
        {"idx=x", false},
        {" id=x", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.item);
        RegionMetaDataHeader region;
        EXPECT_EQ(region.fgParseSettingItem(WebvttString(c.item)), c.expected);
    }
}

// Only a line feed is taken off the end; a carriage return belongs to the last value.
TEST(RegionHeader, CarriageReturnStaysInTheValue) {
    const struct {
        const char* line;
        unsigned scroll;
    } cases[] = {
        {"Region: scroll=up\n", 1},
        {"Region: scroll=up", 1},
        {"Region: scroll=up\r\n", 0},
        {"Region: scroll=up\r", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.line));
        RegionMetaDataHeader region;
        region.vParse(c.line);
        EXPECT_EQ(region.fgScroll, c.scroll);
    }
}

TEST(RegionHeader, EmptyLineIsAnError) {
    RegionMetaDataHeader region;
    try {
        region.vParse("");
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "basic_string::at");
    }
}

}  // namespace
}  // namespace webvtt
