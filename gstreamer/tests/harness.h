// The element between pads that the test owns.
#pragma once

#include <gst/check/gstharness.h>

#include <string>
#include <string_view>
#include <vector>

/// A buffer as a renderer sees it, in milliseconds.
struct Shown {
    long start;
    long end;
    std::string text;

    bool operator==(const Shown& other) const {
        return start == other.start && end == other.end && text == other.text;
    }
};
void PrintTo(const Shown& shown, std::ostream* stream);

class Harness {
  public:
    /// With upstream in bytes, as a file is read, or in time from a start on.
    static Harness of_file() { return Harness(GST_FORMAT_BYTES, 0); }
    static Harness of_live(GstClockTime start) { return Harness(GST_FORMAT_TIME, start); }
    Harness(const Harness&) = delete;
    Harness& operator=(const Harness&) = delete;
    ~Harness();

    GstHarness* get() const { return m_harness; }
    void push_segment(GstFormat format, GstClockTime start);
    /// Pushes bytes, in live streams with a time.
    GstFlowReturn push(std::string_view bytes, GstClockTime pts = GST_CLOCK_TIME_NONE,
                       bool is_interrupted = false);
    void end() { gst_harness_push_event(m_harness, gst_event_new_eos()); }
    /// What has come out since the last time.
    std::vector<Shown> take();
    /// Gaps, in milliseconds, that have come out since the last time, as "1000+500".
    std::vector<std::string> take_gaps();
    /// The details of the warnings that were posted since the last time.
    std::vector<std::string> take_warnings();

  private:
    Harness(GstFormat format, GstClockTime start);

    GstHarness* m_harness;
    GstBus* m_bus;
};

/// The buffer is the caller's.
Shown shown(GstBuffer* buffer);
