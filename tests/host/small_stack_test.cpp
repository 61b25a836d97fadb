// The deepest and longest shapes, parsed, delivered and released on a stack of 32 KB: nothing in
// the module may recurse as deep as a track says.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/cue_record.h"
#include "support/module.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

/// 32 KB; on MIPS and PowerPC 128 KB, for no thread may have less there.
const std::size_t kStackSize =
    std::max<std::size_t>(32 * 1024, static_cast<std::size_t>(sysconf(_SC_THREAD_STACK_MIN)));
constexpr std::size_t kMany = 200000;

std::string repeat(const std::string& text, std::size_t count = kMany) {
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

const std::string kTimes = "00:01.000 --> 00:02.000";

std::string cue(const std::string& payload) {
    return kTimes + "\n" + payload + "\n\n";
}

struct Shape {
    const char* name;
    std::string chunk;   // behind the header section, or the header section itself
    bool is_header;      // the chunk is fed as the first one
    int result;          // of parse; -1 when it throws
    std::size_t cues;    // delivered
    std::size_t length;  // of the last cue's text
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

const Shape kShapes[] = {
    {"NestedTags", cue(repeat("<b>") + "x"), false, 0, 1, 2},
    {"NestedTagsThatAreClosed", cue(repeat("<b>") + "x" + repeat("</b>")), false, 0, 1, 2},
    {"NestedTagsWithText", cue(repeat("<i>a")), false, 0, 1, kMany + 1},
    {"NestedClassesAndLanguages", cue(repeat("<c.a.b><lang en>")), false, 0, 1, 1},
    {"TagsSideBySide", cue(repeat("<b>a</b>")), false, 0, 1, kMany + 1},
    {"Timestamps", cue(repeat("<00:01.000>")), false, 0, 1, 1},
    {"EndTagsOnly", cue(repeat("</b>")), false, 0, 1, 1},
    {"NestedTagsThatFail", cue(repeat("<b>") + "<unknown>"), false, 2, 0, 0},
    {"References", cue(repeat("&amp;")), false, 0, 1, kMany + 1},
    {"Ampersands", cue(repeat("&")), false, 0, 1, kMany},
    {"Brackets", cue("<b " + repeat("<") + ">x"), false, 0, 1, 2},
    {"OneClassNameAfterAnother", cue("<c" + repeat(".a") + ">x"), false, 0, 1, 2},
    {"ALongTagName", cue("</" + repeat("a") + ">x"), false, 0, 1, 2},
    {"ALongText", cue(repeat("0123456789")), false, 0, 1, 10 * kMany + 1},
    {"ManySettings", kTimes + repeat(" size:50%") + "\nx\n\n", false, 0, 1, 2},
    {"ManySpaces", repeat(" ") + "00:01.000 -->" + repeat(" ") + "00:02.000\nx\n\n", false, 0, 1,
     2},
    {"ASettingThatThrows", kTimes + repeat(" size:50%") + " line:-\nx\n\n", false, -1, 0, 0},
    {"ALongStartTime", repeat("a") + " --> 00:02.000\nx\n\n", false, 0, 0, 0},
    {"ManyBlankLines", repeat("\n") + cue("x"), false, 0, 1, 2},
    {"ManyCues", repeat(cue("x"), kMany / 10), false, 0, kMany / 10, 2},
    {"ALongRegion", "WEBVTT\nRegion:" + repeat(" id=a") + "\n\n", true, 0, 0, 0},
    {"ManyRegions", "WEBVTT\n" + repeat("Region: id=a\n", kMany / 10) + "\n", true, 0, 0, 0},
    {"ALongFirstLine", "WEBVTT " + repeat("a") + "\n\n", true, 0, 0, 0},
};

/// What the thread is given, and what it found. It uses no more of the stack than it must.
struct Job {
    const Methods& call;
    const Shape& shape;
    int result = -2;
    std::size_t cues = 0;
    std::size_t length = 0;
    std::size_t deliveries = 0;
};

void on_event(int /*event*/, void* tag, void* info) {
    Job& job = *static_cast<Job*>(tag);
    ++job.deliveries;
    for (auto* record = value_at<const char*>(info, 0); record != nullptr;
         record = value_at<const char*>(record, 44)) {
        ++job.cues;
        job.length = std::strlen(value_at<const char*>(record, 24));
    }
}

void* play(void* argument) {
    Job& job = *static_cast<Job*>(argument);
    const std::string& chunk = job.shape.chunk;
    Handle handle = 0;
    job.call.create(&handle);
    job.call.set_callback(handle, &job, on_event);
    if (!job.shape.is_header) {
        job.call.parse(handle, "WEBVTT\n\n", 8);
    }
    try {
        job.result = job.call.parse(handle, chunk.data(), static_cast<unsigned>(chunk.size()));
    } catch (const std::out_of_range&) {
        job.result = -1;
    }
    job.call.get_result(handle);
    job.call.release(handle);
    return nullptr;
}

class SmallStack : public testing::TestWithParam<Shape> {
  protected:
    const Module m_module;
};

TEST_P(SmallStack, IsEnough) {
    Job job{m_module.methods(), GetParam()};
    {
        const Quiet quiet;
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackSize), 0);
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attributes, play, &job), 0);
        pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
    }
    EXPECT_EQ(job.result, GetParam().result);
    EXPECT_EQ(job.deliveries, 1u);
    EXPECT_EQ(job.cues, GetParam().cues);
    EXPECT_EQ(job.length, GetParam().length);
}

std::string test_name(const testing::TestParamInfo<Shape>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(With, SmallStack, testing::ValuesIn(kShapes), test_name);

}  // namespace
}  // namespace support::host
