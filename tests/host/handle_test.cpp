// Handles that no case file can name: stray ones near live ones, and many at once. The rest of what
// is promised of handles stands in tools/conform/cases/handles.cases.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/diagnostic_lines.h"
#include "support/module.h"
#include "support/parser.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

const std::string kTrack = "WEBVTT\n\n00:01.000 --> 00:02.000\nHi\n\n";

class Handles : public testing::Test {
  protected:
    /// What all calls but Create print for a handle, which must not be live.
    std::string all_calls(Handle handle) {
        return output_of([this, handle] {
            EXPECT_EQ(call.parse(handle, kTrack.data(), static_cast<unsigned>(kTrack.size())), 2);
            call.set_callback(handle, &called, on_event);
            call.get_result(handle);
            call.set_video_time(handle, 90000);
            call.release(handle);
        });
    }

    static void on_event(int /*event*/, void* tag, void* /*info*/) {
        *static_cast<bool*>(tag) = true;
    }

    const Module module;
    const Methods& call = module.methods();
    bool called = false;
};

const std::string kAllRejected = handle_line("IZorWebVtt_Parser_rsltParse") +
                                 handle_line("IZorWebVtt_Parser_vSetWebvttEventNty") +
                                 handle_line("IZorWebVtt_Parser_vGetParseResult") +
                                 handle_line("IZorWebVtt_Parser_vSetVideoPTS") +
                                 handle_line("IZorWebVtt_Parser_Release");

TEST_F(Handles, StrayValuesAreRejected) {
    const Parser parser(call);
    const Handle near[] = {parser.handle() - 1, parser.handle() + 1, parser.handle() ^ 0x80000000u};
    for (const Handle stray :
         {1u, 0x7FFFFFFFu, 0x80000000u, 0xDEADBEEFu, 0xFFFFFFFFu, near[0], near[1], near[2]}) {
        EXPECT_EQ(all_calls(stray), kAllRejected) << stray;
    }
    EXPECT_FALSE(called);
}

// Any access to the page would end the program.
TEST_F(Handles, MemoryBehindAStrayHandleIsNotTouched) {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    EXPECT_EQ(all_calls(static_cast<Handle>(reinterpret_cast<std::uintptr_t>(page))), kAllRejected);
    EXPECT_FALSE(called);
    munmap(page, size);
}

TEST_F(Handles, ManyMayLiveAtOnce) {
    std::vector<Handle> handles(1000);
    for (Handle& handle : handles) {
        ASSERT_EQ(call.create(&handle), 0);
    }
    EXPECT_EQ(std::set<Handle>(handles.begin(), handles.end()).size(), handles.size());
    EXPECT_EQ(output_of([&] {
                  for (const Handle handle : handles) {
                      call.set_video_time(handle, 90000);
                  }
              }),
              "");
    // Every other one, then the rest backwards: from the front, the middle and the end of the list.
    for (std::size_t i = 0; i < handles.size(); i += 2) {
        call.release(handles[i]);
    }
    EXPECT_EQ(all_calls(handles[0]), kAllRejected);
    EXPECT_EQ(all_calls(handles[500]), kAllRejected);
    EXPECT_EQ(output_of([&] {
                  for (std::size_t i = handles.size() - 1; i < handles.size(); i -= 2) {
                      call.release(handles[i]);
                  }
              }),
              "");
    EXPECT_EQ(all_calls(handles.back()), kAllRejected);
}

}  // namespace
}  // namespace support::host
