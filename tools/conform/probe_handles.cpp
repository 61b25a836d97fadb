// Handles that no case file can name: many, near, and stray ones.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>

#include "tools/conform/probes.h"

namespace quill::conform {
namespace {

constexpr std::size_t kMany = 500;

// What the calls print for a handle that is not live.
std::string RefusalOf(const char* function) {
    return std::string("[WEBVTT API:IZorWebVtt_Parser_") + function + "] handle MUST not be NULL\n";
}

// Makes every call that takes a handle, all of which must be refused.
void ExpectRefused(ProbeBench& bench, unsigned int handle) {
    const WebvttModuleMethods& call = bench.methods();
    bench.Printed();
    bench.ExpectEqual("the result of parsing", 2, call.pfnParse(handle, "WEBVTT\n\n", 8));
    call.pfnSetEventNty(handle, nullptr, Ignore);
    call.pfnGetParseResult(handle);
    call.pfnSetVideoPTS(handle, 90000);
    call.pfnRelease(handle);
    bench.ExpectEqual("what the calls printed",
                      RefusalOf("rsltParse") + RefusalOf("vSetWebvttEventNty") +
                          RefusalOf("vGetParseResult") + RefusalOf("vSetVideoPTS") +
                          RefusalOf("Release"),
                      bench.Printed());
}

void ExpectLive(ProbeBench& bench, unsigned int handle) {
    bench.Printed();
    bench.methods().pfnSetVideoPTS(handle, 0);
    bench.ExpectEqual("what a call with a live handle printed", std::string(), bench.Printed());
}

std::vector<unsigned int> CreateMany(ProbeBench& bench) {
    std::vector<unsigned int> handles(kMany);
    for (unsigned int& handle : handles) {
        bench.ExpectEqual("the result of Create", 0, bench.methods().pfnCreate(&handle));
    }
    return handles;
}

void CheckManyHandles(ProbeBench& bench) {
    const std::vector<unsigned int> handles = CreateMany(bench);
    const std::set<unsigned int> different(handles.begin(), handles.end());
    bench.ExpectEqual("the number of different handles", kMany, different.size());
    bench.Expect(different.count(0) == 0, "a handle is 0");
    for (const unsigned int handle : handles) {
        ExpectLive(bench, handle);
    }
}

void CheckReleaseInAnyOrder(ProbeBench& bench) {
    const std::vector<unsigned int> handles = CreateMany(bench);
    for (std::size_t i = 0; i < kMany; i += 2) {
        bench.methods().pfnRelease(handles[i]);
    }
    ExpectRefused(bench, handles[0]);
    ExpectRefused(bench, handles[kMany / 2]);
    for (std::size_t i = 1; i < kMany; i += 2) {
        ExpectLive(bench, handles[i]);
    }
    for (std::size_t i = kMany - 1; i < kMany; i -= 2) {
        bench.methods().pfnRelease(handles[i]);
    }
    ExpectRefused(bench, handles[1]);
    ExpectRefused(bench, handles[kMany - 1]);
}

void CheckNeighbours(ProbeBench& bench) {
    const unsigned int handle = bench.Open(nullptr, Ignore);
    for (const unsigned int stray :
         {handle - 1, handle + 1, handle + 4, handle ^ 0x80000000u, ~handle}) {
        ExpectRefused(bench, stray);
    }
    ExpectLive(bench, handle);
}

// Any access to the page would end the process.
void CheckStrayPointer(ProbeBench& bench) {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    bench.Expect(page != MAP_FAILED, "there is no page for the test");
    ExpectRefused(bench, static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(page)));
}

void CheckReleased(ProbeBench& bench) {
    const unsigned int handle = bench.Open(nullptr, Ignore);
    bench.methods().pfnRelease(handle);
    ExpectRefused(bench, handle);
    ExpectRefused(bench, handle);
}

void CheckTag(ProbeBench& bench) {
    static void* seen;
    const auto remember = [](WEBVTT_EVENT_T, void* tag, void*) { seen = tag; };
    for (const std::uintptr_t value : {std::uintptr_t{0}, std::uintptr_t{1}, ~std::uintptr_t{0}}) {
        void* const tag = reinterpret_cast<void*>(value);
        seen = &seen;
        const unsigned int handle = bench.Open(tag, remember);
        bench.methods().pfnGetParseResult(handle);
        bench.Expect(seen == tag, "the callback got another tag than " + std::to_string(value));
    }
}

// Feeds two tracks to two parsers, byte by byte in turns.
void CheckInterleaving(ProbeBench& bench) {
    using Texts = std::vector<std::string>;
    const auto collect = [](WEBVTT_EVENT_T, void* tag, void* info) {
        for (const support::CueRecord& cue : support::Delivery(info).cues) {
            static_cast<Texts*>(tag)->push_back(support::describe(cue));
        }
    };
    Texts early;
    Texts late;
    const unsigned int first = bench.Open(&early, collect);
    const unsigned int second = bench.Open(&late, collect);
    const std::string_view one = "00:01.000 --> 00:02.000\n<b>early</b>\n\n\n\n";
    const std::string_view other = "id\r\n00:03.000 --> 00:04.000 line:1\r\nlate\r\n\r\n";
    for (std::size_t i = 0; i < std::max(one.size(), other.size()); ++i) {
        for (const auto& [handle, track] : {std::pair(first, one), std::pair(second, other)}) {
            if (i < track.size()) {
                bench.ExpectEqual("a result", 0, bench.Feed(handle, track.substr(i, 1)));
            }
        }
    }
    bench.methods().pfnGetParseResult(second);
    bench.methods().pfnGetParseResult(first);
    bench.Expect(early == Texts{R"(cue 1 2 "early\n")"}, "the first track has other cues");
    bench.Expect(late == Texts{R"(cue 3 4 "late\n" line=1)"}, "the second track has other cues");
}

}  // namespace

std::vector<Case> HandleProbes() {
    constexpr ProbesOf kProbe{"handles"};
    return {
        kProbe("many", "Of 500 parsers each has a handle of its own.", CheckManyHandles),
        kProbe("released-in-any-order", "Parsers can be released in any order.",
               CheckReleaseInAnyOrder),
        kProbe("neighbours", "Numbers near a live handle are no handles.", CheckNeighbours),
        kProbe("stray-pointer", "No memory is touched behind a number that is no handle.",
               CheckStrayPointer),
        kProbe("released", "Every call with a released handle is refused, again and again.",
               CheckReleased),
        kProbe("tag", "The tag is handed back as it was given, whatever it is.", CheckTag),
        kProbe("interleaved", "Two parsers that are fed in turns do not disturb each other.",
               CheckInterleaving),
    };
}

}  // namespace quill::conform
