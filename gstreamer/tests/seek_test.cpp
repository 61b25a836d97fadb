// Seeks in a file, in a pipeline.
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "gstreamer/tests/harness.h"

namespace {

void on_buffer(GstElement* /*sink*/, GstBuffer* buffer, GstPad* /*pad*/, gpointer all) {
    static_cast<std::vector<Shown>*>(all)->push_back(shown(buffer));
}

class Pipeline {
  public:
    Pipeline() {
        gst_init(nullptr, nullptr);
        m_pipeline = gst_parse_launch("filesrc location=" SAMPLES
                                      "/dialogue.vtt blocksize=100 "
                                      "! quillcaption quiet=true "
                                      "! fakesink name=sink sync=false signal-handoffs=true",
                                      nullptr);
        GstElement* const sink = gst_bin_get_by_name(GST_BIN(m_pipeline), "sink");
        g_signal_connect(sink, "handoff", reinterpret_cast<GCallback>(on_buffer), &m_shown);
        gst_object_unref(sink);
        gst_element_set_state(m_pipeline, GST_STATE_PLAYING);
    }
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;
    ~Pipeline() {
        gst_element_set_state(m_pipeline, GST_STATE_NULL);
        gst_object_unref(m_pipeline);
    }

    bool seek(long start, long stop) {
        // Nothing of the old position may come between the seek's flush and the list's.
        gst_element_set_state(m_pipeline, GST_STATE_PAUSED);
        gst_element_get_state(m_pipeline, nullptr, nullptr, GST_CLOCK_TIME_NONE);
        m_shown.clear();
        const bool done = gst_element_seek(m_pipeline, 1.0, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                           GST_SEEK_TYPE_SET, start * GST_MSECOND,
                                           GST_SEEK_TYPE_SET, stop * GST_MSECOND) != FALSE;
        gst_element_set_state(m_pipeline, GST_STATE_PLAYING);
        return done;
    }
    bool seek_backwards() {
        return gst_element_seek(m_pipeline, -1.0, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                GST_SEEK_TYPE_SET, 0, GST_SEEK_TYPE_SET, GST_SECOND) != FALSE;
    }
    bool is_seekable() {
        GstQuery* const query = gst_query_new_seeking(GST_FORMAT_TIME);
        gboolean seekable = FALSE;
        gst_element_query(m_pipeline, query);
        gst_query_parse_seeking(query, nullptr, &seekable, nullptr, nullptr);
        gst_query_unref(query);
        return seekable != FALSE;
    }
    std::vector<Shown> played() {
        GstBus* const bus = gst_element_get_bus(m_pipeline);
        GstMessage* const message = gst_bus_timed_pop_filtered(
            bus, 20 * GST_SECOND,
            static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR | GST_MESSAGE_WARNING));
        EXPECT_TRUE(message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS);
        if (message != nullptr) {
            gst_message_unref(message);
        }
        gst_object_unref(bus);
        return m_shown;
    }

  private:
    GstElement* m_pipeline;
    std::vector<Shown> m_shown;
};

std::vector<Shown> clipped(const std::vector<Shown>& all, long start, long stop) {
    std::vector<Shown> kept;
    for (const Shown& cue : all) {
        if (cue.end > start && cue.start < stop) {
            kept.push_back({std::max(cue.start, start), std::min(cue.end, stop), cue.text});
        }
    }
    return kept;
}

TEST(Seek, TwoHundredRandomOnes) {
    Pipeline pipeline;
    const std::vector<Shown> all = pipeline.played();
    ASSERT_GT(all.size(), 10U);
    ASSERT_TRUE(pipeline.is_seekable());
    std::mt19937 random(15);
    const long length = all[all.size() - 2].end;  // the last cue is an hour later
    for (int count = 0; count < 200; ++count) {
        const long start = static_cast<long>(random() % static_cast<unsigned>(length));
        const long stop = start + 1 + static_cast<long>(random() % static_cast<unsigned>(length));
        ASSERT_TRUE(pipeline.seek(start, stop));
        ASSERT_EQ(pipeline.played(), clipped(all, start, stop)) << start << " to " << stop;
    }
}

TEST(Seek, NotBackwards) {
    Pipeline pipeline;
    pipeline.played();
    EXPECT_FALSE(pipeline.seek_backwards());
}

}  // namespace
