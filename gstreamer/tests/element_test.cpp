// What becomes of a track in the element.
#include <gst/check/gstharness.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <iostream>
#include <thread>

#include "gstreamer/tests/harness.h"

namespace {

constexpr std::string_view kTrack =
    "WEBVTT\r\nX-TIMESTAMP-MAP=MPEGTS:0,LOCAL:00:00:00.000\r\n\r\n"
    "00:01.000 --> 00:02.000\r\nOne\r\n\r\n"
    "00:03.500 --> 00:05.000\r\nTwo\r\nlines\r\n";
const std::vector<Shown> kCues = {{1000, 2000, "One\n"}, {3500, 5000, "Two\nlines\n"}};

/// What a track that arrives in one piece gives.
std::vector<Shown> played(std::string_view track) {
    Harness harness = Harness::of_file();
    EXPECT_EQ(harness.push(track), GST_FLOW_OK);
    harness.end();
    EXPECT_EQ(harness.take_warnings(), std::vector<std::string>());
    return harness.take();
}

std::string cue(const std::string& times, const std::string& text) {
    return "WEBVTT\n\n" + times + "\n" + text + "\n\n";
}

TEST(Element, GivesTimedTextOfAWholeTrack) {
    EXPECT_EQ(played(kTrack), kCues);
}

TEST(Element, TakesATrackInPiecesOfAnySize) {
    for (std::size_t size = 1; size <= kTrack.size(); ++size) {
        Harness harness = Harness::of_file();
        for (std::size_t at = 0; at < kTrack.size(); at += size) {
            ASSERT_EQ(harness.push(kTrack.substr(at, size)), GST_FLOW_OK);
        }
        harness.end();
        ASSERT_EQ(harness.take(), kCues) << size;
    }
}

TEST(Element, ReadsEveryKindOfLineEnd) {
    for (const std::string end : {"\n", "\r", "\r\n"}) {
        std::string track;
        for (const char* const line : {"WEBVTT", "", "00:01.000 --> 00:02.000", "a", "b", ""}) {
            track += line + end;
        }
        EXPECT_EQ(played(track), (std::vector<Shown>{{1000, 2000, "a\nb\n"}}));
    }
}

TEST(Element, ShowsACueAsSoonAsItIsComplete) {
    Harness harness = Harness::of_file();
    harness.push("WEBVTT\n\n00:01.000 --> 00:02.000\nOne\n");
    EXPECT_EQ(harness.take(), std::vector<Shown>());
    harness.push("\n");
    EXPECT_EQ(harness.take(), (std::vector<Shown>{{1000, 2000, "One\n"}}));
}

TEST(Element, BeginsAnewAfterAFlush) {
    Harness harness = Harness::of_file();
    harness.push("WEBVTT\n\n00:01.000 --> 00:02.000\nHalf");
    gst_harness_push_event(harness.get(), gst_event_new_flush_start());
    gst_harness_push_event(harness.get(), gst_event_new_flush_stop(TRUE));
    harness.push_segment(GST_FORMAT_BYTES, 0);
    harness.push(kTrack);
    harness.end();
    EXPECT_EQ(harness.take(), kCues);
}

TEST(Element, SaysWhereNothingIs) {
    Harness harness = Harness::of_file();
    harness.push(kTrack);
    harness.end();
    EXPECT_EQ(harness.take_gaps(), (std::vector<std::string>{"0+1000", "2000+1500"}));
}

TEST(Element, LeavesOutWhatIsNeverShown) {
    EXPECT_EQ(played(cue("00:02.000 --> 00:01.000", "x")), std::vector<Shown>());
    EXPECT_EQ(played(cue("00:02.000 --> 00:02.000", "x")), std::vector<Shown>());
}

TEST(Element, MakesUtf8OfEverything) {
    EXPECT_EQ(played(cue("00:01.000 --> 00:02.000", "a\xff\xc3z")),
              (std::vector<Shown>{{1000, 2000, "a\xEF\xBF\xBD\xEF\xBF\xBDz\n"}}));
}

TEST(Element, GivesTheSettings) {
    Harness harness = Harness::of_file();
    harness.push(
        cue("00:01.000 --> 00:02.000 line:3 position:20% size:40% align:end vertical:rl", "x"));
    GstBuffer* const buffer = gst_harness_pull(harness.get());
    GstCustomMeta* const meta = gst_buffer_get_custom_meta(buffer, "QuillcaptionSettings");
    ASSERT_NE(meta, nullptr);
    gchar* const text = gst_structure_to_string(gst_custom_meta_get_structure(meta));
    EXPECT_STREQ(
        text,
        "QuillcaptionSettings, line=(int)3, snap-to-lines=(boolean)true, position=(int)20, "
        "size=(int)40, align=(string)end, vertical=(string)rl;");
    g_free(text);
    gst_buffer_unref(buffer);
}

struct Trouble {
    std::string track;
    std::string warning;
    std::size_t cues;
};
const Trouble kTroubles[] = {
    {"WEBVTT\n\n00:01.000 --> 00:02.000 line:-\nx\n\n00:03.000 --> 00:04.000\ny\n",
     "a cue or header is lost: the module threw std::out_of_range: basic_string::at", 1},
    {"WEBVTT\nX-TIMESTAMP-MAP=LOCAL:00:00:00.000\n\n00:03.000 --> 00:04.000\ny\n",
     "a cue or header is lost: the module threw std::out_of_range: basic_string::substr", 1},
    {"WEBVTT\n\n00:01.000 --> 00:02.000\n<x>x\n\n00:03.000 --> 00:04.000\ny\n",
     "a cue is lost: a start tag that is not known, or memory ran out", 1},
    {"1\n00:00:01,000 --> 00:00:02,000\nx\n", "the first line is \"1\", not WEBVTT", 0},
    {"WEBVTT\n\n" + std::string(2 << 20, 'x'), "a line has more than 1048576 bytes", 0},
};

TEST(Element, WarnsOfWhatIsLostAndGoesOn) {
    for (const Trouble& trouble : kTroubles) {
        Harness harness = Harness::of_file();
        EXPECT_EQ(harness.push(trouble.track), GST_FLOW_OK);
        harness.end();
        const std::vector<std::string> warnings = harness.take_warnings();
        ASSERT_EQ(warnings.size(), 1U) << trouble.warning;
        EXPECT_NE(warnings[0].find(trouble.warning), std::string::npos) << warnings[0];
        EXPECT_EQ(harness.take().size(), trouble.cues) << trouble.warning;
    }
}

/// Whether the element gets ready with such a module; the error otherwise.
std::string error_with(const char* module, bool guard) {
    gst_init(nullptr, nullptr);
    GstElement* const element = gst_element_factory_make("quillcaption", nullptr);
    GstBus* const bus = gst_bus_new();
    gst_element_set_bus(element, bus);
    g_object_set(element, "guard", static_cast<gboolean>(guard), nullptr);
    if (module != nullptr) {
        g_object_set(element, "module", module, nullptr);
    }
    std::string text;
    if (gst_element_set_state(element, GST_STATE_READY) == GST_STATE_CHANGE_FAILURE) {
        GstMessage* const message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
        GError* error = nullptr;
        gst_message_parse_error(message, &error, nullptr);
        text = error->message;
        g_error_free(error);
        gst_message_unref(message);
    }
    gst_element_set_state(element, GST_STATE_NULL);
    gst_element_set_bus(element, nullptr);
    gst_object_unref(bus);
    gst_object_unref(element);
    return text;
}

TEST(Element, LoadsTheModuleOrTheGuardBesideIt) {
    EXPECT_EQ(error_with(nullptr, false), "");
    EXPECT_EQ(error_with(nullptr, true), "");
    EXPECT_NE(error_with("/nowhere/quillcaption.so", false).find("property module"),
              std::string::npos);
    EXPECT_NE(error_with("/nowhere/quillcaption.so", true).find("quillcaption-guard.so"),
              std::string::npos);
    EXPECT_NE(error_with("/proc/self/exe", false).find("No caption module"), std::string::npos);
}

/// While it lives, standard output goes into a file.
class OutputFile {
  public:
    OutputFile() : m_file(std::tmpfile()), m_original(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        dup2(fileno(m_file), STDOUT_FILENO);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile() {
        dup2(m_original, STDOUT_FILENO);
        close(m_original);
        std::fclose(m_file);
    }

    std::string text() const {
        std::fflush(stdout);
        std::rewind(m_file);
        std::string text(std::size_t{1} << 20, '\0');
        text.resize(std::fread(text.data(), 1, text.size(), m_file));
        return text;
    }

  private:
    std::FILE* m_file;
    int m_original;
};

TEST(Element, DropsNothingOfWhatOtherThreadsPrint) {
    constexpr int kTracks = 200;
    const OutputFile output;
    std::atomic<bool> is_done{false};
    std::string printed;
    std::thread other([&] {
        for (int i = 0; !is_done; ++i) {
            const std::string line = std::to_string(i) + "\n";
            if (i % 2 == 0) {
                std::fputs(line.c_str(), stdout);
            } else {
                std::cout << line << std::flush;
            }
            printed += line;
            std::this_thread::yield();
        }
    });
    for (int i = 0; i < kTracks; ++i) {
        EXPECT_EQ(played(kTrack), kCues);
    }
    is_done = true;
    other.join();
    EXPECT_TRUE(output.text() == printed.substr(0, std::size_t{1} << 20));
}

}  // namespace
