// Live streams: tracks of a few seconds each, one after the other, with times of the video.
#include <gtest/gtest.h>
#include <malloc.h>

#include "gstreamer/tests/harness.h"

namespace {

constexpr unsigned kSegmentSeconds = 6;

/// A segment of a stream whose clock began at 0, with a map in 33 bits as transport streams have
/// it, and a cue from its second second on. Its last line may lack its end.
std::string live_segment(unsigned at_seconds) {
    const unsigned long long ticks = (at_seconds * 90000ULL) % (1ULL << 33);
    return "WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:" + std::to_string(ticks) +
           ",LOCAL:00:00:00.000\n\n00:01.000 --> 00:02.500\nAt " + std::to_string(at_seconds);
}

TEST(Live, EachSegmentIsATrack) {
    Harness harness = Harness::of_live(12 * GST_SECOND);
    for (const unsigned at : {12U, 18U, 24U}) {
        EXPECT_EQ(harness.push(live_segment(at), at * GST_SECOND), GST_FLOW_OK);
    }
    harness.end();
    EXPECT_EQ(harness.take(), (std::vector<Shown>{{13000, 14500, "At 12\n"},
                                                  {19000, 20500, "At 18\n"},
                                                  {25000, 26500, "At 24\n"}}));
    EXPECT_EQ(harness.take_gaps(),
              (std::vector<std::string>{"12000+1000", "14500+3500", "18000+1000", "20500+3500",
                                        "24000+1000"}));
}

TEST(Live, ASegmentMayArriveInPieces) {
    Harness harness = Harness::of_live(0);
    const std::string first = live_segment(0);
    harness.push(first.substr(0, 30), 0);
    harness.push(first.substr(30));
    harness.push(live_segment(6), 6 * GST_SECOND);
    EXPECT_EQ(harness.take(), (std::vector<Shown>{{1000, 2500, "At 0\n"}}));
}

TEST(Live, WhatIsInterruptedIsNoCue) {
    Harness harness = Harness::of_live(0);
    harness.push("WEBVTT\n\n00:01.000 --> 00:02.000\nhal", 0);
    harness.push("00:03.000 --> 00:04.000\nwhole\n\n", GST_CLOCK_TIME_NONE, true);
    EXPECT_EQ(harness.take(), (std::vector<Shown>{{3000, 4000, "whole\n"}}));
}

TEST(Live, ThePastIsCutOff) {
    Harness harness = Harness::of_live(10 * GST_SECOND);
    harness.push("WEBVTT\n\n00:08.000 --> 00:09.000\nover\n\n00:09.500 --> 00:11.000\nnow\n\n");
    EXPECT_EQ(harness.take(), (std::vector<Shown>{{10000, 11000, "now\n"}}));
}

TEST(Live, TimesGoOnWhereTheClockOf32BitsBeginsAnew) {
    // 2^32 ticks are 47721.858 s. One segment lies before that, one across it, one behind.
    Harness harness = Harness::of_live(47700 * GST_SECOND);
    for (const unsigned at : {47715U, 47721U, 47727U}) {
        harness.push(live_segment(at), at * GST_SECOND);
    }
    harness.end();
    const std::vector<Shown> all = harness.take();
    ASSERT_EQ(all.size(), 3U);
    for (std::size_t index = 0; index < 3; ++index) {
        // The module counts whole seconds of a map that is cut to 32 bits: up to one second off.
        EXPECT_NEAR(all[index].start, 47716000 + 6000 * static_cast<long>(index), 1000);
    }
}

TEST(Live, AMapMayLieBeforeThatAndTheVideoBehind) {
    Harness harness = Harness::of_live(47727 * GST_SECOND);
    harness.push("WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:" + std::to_string(47715 * 90000ULL) +
                     ",LOCAL:00:00:00.000\n\n00:13.000 --> 00:14.000\nx\n\n",
                 47727 * GST_SECOND);
    const std::vector<Shown> all = harness.take();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_NEAR(all[0].start, 47728000, 1000);
}

TEST(Live, ADayLeavesMemoryAsItWas) {
    constexpr unsigned kHour = 3600;
    Harness harness = Harness::of_live(0);
    gst_harness_use_testclock(harness.get());
    std::size_t after_an_hour = 0;
    std::size_t cues = 0;
    for (unsigned at = 0; at < 24 * kHour; at += kSegmentSeconds) {
        gst_harness_set_time(harness.get(), at * GST_SECOND);
        ASSERT_EQ(harness.push(live_segment(at), at * GST_SECOND), GST_FLOW_OK);
        cues += harness.take().size();
        harness.take_gaps();
        if (at == kHour) {
            after_an_hour = mallinfo2().uordblks;
        }
    }
    const std::size_t after_a_day = mallinfo2().uordblks;
    EXPECT_EQ(cues, 24 * kHour / kSegmentSeconds - 1);  // the last one is not finished
    EXPECT_LT(after_a_day, after_an_hour + 4096);
    EXPECT_EQ(harness.take_warnings(), std::vector<std::string>());
}

}  // namespace
