#include "gstreamer/tests/harness.h"

#include <gtest/gtest.h>

namespace {

/// The tracer of leaks looks at what is left when the framework ends.
class LastOfAll : public testing::Environment {
  public:
    void TearDown() override { gst_deinit(); }
};
[[maybe_unused]] testing::Environment* const last_of_all =
    testing::AddGlobalTestEnvironment(new LastOfAll);

}  // namespace

void PrintTo(const Shown& shown, std::ostream* stream) {
    *stream << shown.start << " to " << shown.end << ": " << shown.text;
}

Shown shown(GstBuffer* buffer) {
    GstMapInfo map;
    gst_buffer_map(buffer, &map, GST_MAP_READ);
    std::string text(reinterpret_cast<const char*>(map.data), map.size);
    gst_buffer_unmap(buffer, &map);
    const GstClockTime start = GST_BUFFER_PTS(buffer);
    return {static_cast<long>(start / GST_MSECOND),
            static_cast<long>((start + GST_BUFFER_DURATION(buffer)) / GST_MSECOND), text};
}

Harness::Harness(GstFormat format, GstClockTime start) {
    gst_init(nullptr, nullptr);
    m_harness = gst_harness_new("quillcaption");
    g_object_set(m_harness->element, "quiet", TRUE, nullptr);
    m_bus = gst_bus_new();
    gst_element_set_bus(m_harness->element, m_bus);
    gst_harness_set_src_caps_str(m_harness, "text/vtt");
    push_segment(format, start);
    while (GstEvent* const event = gst_harness_try_pull_event(m_harness)) {
        gst_event_unref(event);
    }
}

Harness::~Harness() {
    gst_element_set_bus(m_harness->element, nullptr);
    gst_object_unref(m_bus);
    gst_harness_teardown(m_harness);
}

void Harness::push_segment(GstFormat format, GstClockTime start) {
    GstSegment segment;
    gst_segment_init(&segment, format);
    segment.start = segment.time = segment.position = start;
    gst_harness_push_event(m_harness, gst_event_new_segment(&segment));
}

GstFlowReturn Harness::push(std::string_view bytes, GstClockTime pts, bool is_interrupted) {
    GstBuffer* const buffer = gst_buffer_new_memdup(bytes.data(), bytes.size());
    GST_BUFFER_PTS(buffer) = pts;
    if (is_interrupted) {
        GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
    }
    return gst_harness_push(m_harness, buffer);
}

std::vector<Shown> Harness::take() {
    std::vector<Shown> all;
    while (GstBuffer* const buffer = gst_harness_try_pull(m_harness)) {
        all.push_back(shown(buffer));
        gst_buffer_unref(buffer);
    }
    return all;
}

std::vector<std::string> Harness::take_gaps() {
    std::vector<std::string> gaps;
    while (GstEvent* const event = gst_harness_try_pull_event(m_harness)) {
        if (GST_EVENT_TYPE(event) == GST_EVENT_GAP) {
            GstClockTime start = 0;
            GstClockTime duration = 0;
            gst_event_parse_gap(event, &start, &duration);
            gaps.push_back(std::to_string(start / GST_MSECOND) + "+" +
                           std::to_string(duration / GST_MSECOND));
        }
        gst_event_unref(event);
    }
    return gaps;
}

std::vector<std::string> Harness::take_warnings() {
    std::vector<std::string> warnings;
    while (GstMessage* const message = gst_bus_pop_filtered(m_bus, GST_MESSAGE_WARNING)) {
        GError* error = nullptr;
        gchar* details = nullptr;
        gst_message_parse_warning(message, &error, &details);
        warnings.emplace_back(details);
        g_error_free(error);
        g_free(details);
        gst_message_unref(message);
    }
    return warnings;
}
