// "X-TIMESTAMP-MAP" header lines.
#include "header/timestamp_header.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/diagnostic_lines.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

using support::error_line;

constexpr double kNoTime = -1.0;
constexpr unsigned long kNoTicks = 4294967295UL;

struct MapCase {
    std::string value;  // behind the keyword
    double local;
    unsigned long ticks;
    std::string output;
    std::string thrown;
};

void check(const MapCase& c) {
    SCOPED_TRACE(testing::PrintToString(c.value));
    TimeStampMetaDataHeader map;
    std::string thrown;
    const std::string output = support::output_of([&] {
        support::ExactText line("X-TIMESTAMP-MAP" + c.value);
        try {
            map.vParse(line.c_str());
        } catch (const std::out_of_range& error) {
            thrown = error.what();
        }
    });
    EXPECT_EQ(map.dLocalTime, c.local);
    EXPECT_EQ(map.u4MpegTs, c.ticks);
    EXPECT_EQ(output, c.output);
    EXPECT_EQ(thrown, c.thrown);
    EXPECT_EQ(map.fgIsValid(), c.local != kNoTime && c.ticks != kNoTicks);
}

/// The traces of a "MPEGTS:" item, up to the one of its digits.
std::string ticks_trace(const std::string& item) {
    return item + "fgParseMpegPts\nfgParseMpegPts" + item.substr(7) + "\n";
}

std::string ticks_trace(const std::string& item, const std::string& number) {
    return ticks_trace(item) + "data is " + number + "\n";
}

const std::string kBadValue = error_line("Invalid X-TIMESTAMP-MAP Meta Header Value!");
const std::string kBadFirst = error_line("Invalid X-TIMESTAMP-MAP Meta Header 1!");
const std::string kBadSecond = error_line("Invalid X-TIMESTAMP-MAP Meta Header 2!");

TEST(TimestampHeader, StartsUnset) {
    TimeStampMetaDataHeader map;
    EXPECT_EQ(map.eType(), 1);
    EXPECT_EQ(map.dLocalTime, -1.0);
    EXPECT_EQ(map.u4MpegTs, 4294967295UL);
    EXPECT_FALSE(map.fgIsValid());
}

TEST(TimestampHeader, IsValidWhenBothFieldsAreSet) {
    const struct {
        double local;
        unsigned long ticks;
        bool expected;
    } cases[] = {
        {0.0, 0, true},   {-5.0, 1, true},         {-0.999, 4294967294UL, true},
        {-1.0, 0, false}, {-1.0, kNoTicks, false}, {0.0, kNoTicks, false},
    };
    for (const auto& c : cases) {
        TimeStampMetaDataHeader map;
        map.dLocalTime = c.local;
        map.u4MpegTs = c.ticks;
        EXPECT_EQ(map.fgIsValid(), c.expected) << c.local << " " << c.ticks;
    }
}

TEST(TimestampHeader, ItemsInEitherOrder) {
    const MapCase cases[] = {
        {"=MPEGTS:900000,LOCAL:00:00:00.000\n", 0.0, 900000,
         "MPEGTS:900000\nMPEGTS:900000fgParseMpegPts\nfgParseMpegPts900000\ndata is 900000\n", ""},
        {"=LOCAL:00:00:01.000,MPEGTS:90000", 1.0, 90000,
         "LOCAL:00:00:01.000\n" + ticks_trace("MPEGTS:90000", "90000"), ""},
        {"=LOCAL:00:01.500,MPEGTS:0\n", 1.5, 0, "LOCAL:00:01.500\n" + ticks_trace("MPEGTS:0", "0"),
         ""},
        // The separator may be missing, and spaces around the whole are removed.
        {"MPEGTS:1,LOCAL:00:02.000", 2.0, 1, "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1"), ""},
        {"=  MPEGTS:1,LOCAL:00:02.000  \n", 2.0, 1, "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1"),
         ""},
        {"  MPEGTS:1,LOCAL:00:02.000", 2.0, 1, "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1"), ""},
    };
    for (const MapCase& c : cases) {
        check(c);
    }
}

TEST(TimestampHeader, TicksWrapIn32Bits) {
    const MapCase cases[] = {
        {"=LOCAL:00:00.000,MPEGTS:4294967296", 0.0, 0,
         "LOCAL:00:00.000\n" + ticks_trace("MPEGTS:4294967296", "0"), ""},
        {"=LOCAL:00:00.000,MPEGTS:8589934591", 0.0, kNoTicks,  // wraps to what stands for unset
         "LOCAL:00:00.000\n" + ticks_trace("MPEGTS:8589934591", "4294967295"), ""},
    };
    for (const MapCase& c : cases) {
        check(c);
    }
}

TEST(TimestampHeader, InvalidValuesUnsetBothFields) {
    const MapCase cases[] = {
        {":MPEGTS:1,LOCAL:00:00.000", kNoTime, kNoTicks,
         ":MPEGTS:1\n" + ticks_trace(":MPEGTS:1", "0") + kBadValue, ""},
        {" =MPEGTS:1,LOCAL:00:00.000", kNoTime, kNoTicks,
         "=MPEGTS:1\n" + ticks_trace("=MPEGTS:1", "0") + kBadValue, ""},
        {"=MPEGTS:abc,LOCAL:00:00:00.000", kNoTime, kNoTicks,
         "MPEGTS:abc\n" + ticks_trace("MPEGTS:abc", "0") + kBadValue, ""},
        {"=MPEGTS:,LOCAL:00:00:00.000", kNoTime, kNoTicks,
         "MPEGTS:\n" + ticks_trace("MPEGTS:") + kBadValue, ""},
        {"=MPEGTS:1 ,LOCAL:00:00.000", kNoTime, kNoTicks,
         "MPEGTS:1 \n" + ticks_trace("MPEGTS:1 ", "0") + kBadValue, ""},
        {"=LOCAL:0,MPEGTS:1", kNoTime, kNoTicks, "LOCAL:0\n" + kBadValue, ""},
        {"=LOCAL:00:0x.000,MPEGTS:1", kNoTime, kNoTicks,
         "LOCAL:00:0x.000\ninput is 0x.000\nNot a valid data string\n" + kBadValue, ""},
        {"=LOCAL:MPEGTS:1,MPEGTS:1", kNoTime, kNoTicks, "LOCAL:MPEGTS:1\n" + kBadValue, ""},
        // An item must begin with its name: the value is taken from a fixed place.
        {"=MPEGTS:900000, LOCAL:00:00:00.000", kNoTime, kNoTicks,
         "MPEGTS:900000\n" + ticks_trace("MPEGTS:900000", "900000") + kBadValue, ""},
        {"=MPEGTS:1,LOCAL:00:00.000,x", kNoTime, kNoTicks,
         "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1") + kBadValue, ""},
        {"=MPEGTS:1,LOCAL:00:00.000\r\n", kNoTime, kNoTicks,
         "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1") + kBadValue, ""},
    };
    for (const MapCase& c : cases) {
        check(c);
    }
}

TEST(TimestampHeader, ItemsThatNameNoField) {
    const MapCase cases[] = {
        {"=FOO:1,BAR:2", kNoTime, kNoTicks, "FOO:1\n" + kBadFirst, ""},
        {"=FOO:1,MPEGTS:1", kNoTime, kNoTicks, "FOO:1\n" + kBadFirst, ""},
        {"=mpegts:1,local:00:00.000", kNoTime, kNoTicks, "mpegts:1\n" + kBadFirst, ""},
        {"=", kNoTime, kNoTicks, "\n" + kBadFirst, ""},
        {"=\n", kNoTime, kNoTicks, "\n" + kBadFirst, ""},
        {" \n", kNoTime, kNoTicks, "\n" + kBadFirst, ""},
        {"=,MPEGTS:1", kNoTime, kNoTicks, "\n" + kBadFirst, ""},
        {"=MPEGTS:1,FOO:2", kNoTime, 1, "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1") + kBadSecond,
         ""},
        {"=MPEGTS:1,", kNoTime, 1, "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1") + kBadSecond, ""},
        {"=LOCAL:00:02.000,FOO", 2.0, kNoTicks, "LOCAL:00:02.000\n" + kBadSecond, ""},
    };
    for (const MapCase& c : cases) {
        check(c);
    }
}

TEST(TimestampHeader, SameFieldTwiceLeavesTheOtherUnset) {
    const MapCase cases[] = {
        {"=MPEGTS:1,MPEGTS:2", kNoTime, 2,
         "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1") + ticks_trace("MPEGTS:2", "2"), ""},
        {"=LOCAL:00:01.000,LOCAL:00:02.000", 2.0, kNoTicks, "LOCAL:00:01.000\n", ""},
    };
    for (const MapCase& c : cases) {
        check(c);
    }
}

TEST(TimestampHeader, MissingPartsAreErrorsThatLeaveTheModule) {
    const MapCase cases[] = {
        {"", kNoTime, kNoTicks, "", "basic_string::at"},
        {"\n", kNoTime, kNoTicks, "", "basic_string::at"},
        {"=MPEGTS:1", kNoTime, 1, "MPEGTS:1\n" + ticks_trace("MPEGTS:1", "1"),
         "basic_string::substr"},
        {"=LOCAL:00:02.000\n", 2.0, kNoTicks, "LOCAL:00:02.000\n", "basic_string::substr"},
    };
    for (const MapCase& c : cases) {
        check(c);
    }
}

TEST(TimestampHeader, SingleItems) {
    TimeStampMetaDataHeader map;
    bool valid = false;
    EXPECT_EQ(support::output_of(
                  [&] { valid = map.fgParseLocalTime(WebvttString("LOCAL:01:00:00.500")); }),
              "");
    EXPECT_TRUE(valid);
    EXPECT_EQ(map.dLocalTime, 3600.5);
    EXPECT_FALSE(map.fgParseLocalTime(WebvttString("LOCAL:")));
    EXPECT_EQ(support::output_of([&] { valid = map.fgParseMpegPts(WebvttString("MPEGTS:0042")); }),
              ticks_trace("MPEGTS:0042", "42"));
    EXPECT_TRUE(valid);
    EXPECT_EQ(map.u4MpegTs, 42u);
}

TEST(TimestampHeader, ItemsShorterThanTheirNames) {
    const auto thrown_by = [](auto call) -> std::string {
        try {
            call();
        } catch (const std::out_of_range& error) {
            return error.what();
        }
        return "nothing was thrown";
    };
    TimeStampMetaDataHeader map;
    std::string what;
    EXPECT_EQ(support::output_of(
                  [&] { what = thrown_by([&] { map.fgParseLocalTime(WebvttString("LOCAL")); }); }),
              "");
    EXPECT_EQ(what, "basic_string::substr");
    EXPECT_EQ(support::output_of(
                  [&] { what = thrown_by([&] { map.fgParseMpegPts(WebvttString("MPEGTS")); }); }),
              "MPEGTSfgParseMpegPts\n");
    EXPECT_EQ(what, "basic_string::substr");
}

}  // namespace
}  // namespace webvtt
