// Loading, unloading, and what becomes of memory.
#include <dlfcn.h>
#include <malloc.h>

#include <fstream>

#include "tools/conform/probes.h"

namespace quill::conform {
namespace {

constexpr int kWarmRounds = 5;
constexpr int kRounds = 50;
// Caches of the C library may come and go; a leak in every round is more than this.
constexpr std::size_t kTolerance = std::size_t{8} * kRounds;

constexpr std::string_view kCues =
    "00:01.000 --> 00:02.000 align:end\nHello <b>big</b> &amp; small\n\n"
    "00:03.000 --> 00:04.000\nA longer text, which does not fit into a short string's own "
    "place\n\n";

std::size_t HeapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Whether any part of the module's file is mapped.
bool IsMapped(const std::string& path) {
    const std::string file = path.substr(path.rfind('/') + 1);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t name = line.rfind('/');
        if (name != std::string::npos && line.compare(name + 1, std::string::npos, file) == 0) {
            return true;
        }
    }
    return false;
}

template <typename Round>
void CheckBalance(ProbeBench& bench, Round round) {
    for (int i = 0; i < kWarmRounds; ++i) {
        round();
        bench.Printed();
    }
    const std::size_t before = HeapInUse();
    for (int i = 0; i < kRounds; ++i) {
        round();
        bench.Printed();
    }
    const std::size_t after = HeapInUse();
    bench.Expect(after <= before + kTolerance, "the heap grew by " +
                                                   std::to_string(after - before) + " bytes in " +
                                                   std::to_string(kRounds) + " rounds");
}

// A parser's life: opened, fed, released.
void LiveOnce(ProbeBench& bench, std::string_view bytes, bool is_taken) {
    const unsigned int handle = bench.Open(nullptr, Ignore);
    try {
        bench.Feed(handle, bytes);
    } catch (const std::exception&) {
        // Some tracks are for that.
    }
    if (is_taken) {
        bench.methods().pfnGetParseResult(handle);
    }
    bench.methods().pfnRelease(handle);
}

void CheckUnmapping(ProbeBench& bench) {
    bench.Expect(IsMapped(bench.path()), "the loaded module is not in the list of mappings");
    LiveOnce(bench, kCues, true);
    bench.Doing("unloading the module");
    bench.Unload();
    bench.Expect(!IsMapped(bench.path()), "the module is still mapped after dlclose");
}

void CheckLastUser(ProbeBench& bench) {
    {
        const host::ModuleHandle again(bench.path());
        bench.Expect(IsMapped(bench.path()), "a module that is loaded twice is not mapped");
    }
    unsigned int handle = 0;
    bench.ExpectEqual("the result of Create", 0, bench.methods().pfnCreate(&handle));
    bench.methods().pfnRelease(handle);
}

void CheckFreshRegistry(ProbeBench& bench) {
    unsigned int handle = 0;
    bench.methods().pfnCreate(&handle);
    bench.methods().pfnRelease(handle);
    bench.Unload();
    bench.Load();
    bench.ExpectEqual("the result of parsing with an old handle", 2,
                      bench.methods().pfnParse(handle, "WEBVTT\n\n", 8));
}

void CheckReload(ProbeBench& bench) {
    for (int i = 0; i < 3; ++i) {
        bench.Unload();
        bench.Load();
        LiveOnce(bench, kCues, true);
    }
}

void CheckLongLife(ProbeBench& bench) {
    const unsigned int handle = bench.Open(nullptr, Ignore);
    CheckBalance(bench, [&] {
        bench.Feed(handle, kCues);
        bench.methods().pfnGetParseResult(handle);
    });
    bench.methods().pfnRelease(handle);
}

void CheckHeaders(ProbeBench& bench) {
    CheckBalance(bench, [&] {
        unsigned int handle = 0;
        bench.methods().pfnCreate(&handle);
        bench.Feed(handle,
                   "WEBVTT\nRegion: id=fred width=40%\nRegion: id=bill\n"
                   "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n\n");
        bench.methods().pfnRelease(handle);
    });
}

template <bool kIsTaken>
void CheckCueBalance(ProbeBench& bench) {
    CheckBalance(bench, [&] { LiveOnce(bench, kCues, kIsTaken); });
}

}  // namespace

std::vector<Case> LifetimeProbes() {
    constexpr ProbesOf kProbe{"lifetime"};
    using Bench = ProbeBench;
    return {
        kProbe("unmapped", "Nothing of the module is left in memory after dlclose.",
               CheckUnmapping),
        kProbe("last-user", "The module stays until its last user has closed it.", CheckLastUser),
        kProbe("fresh-registry", "A handle does not outlive the module's unloading.",
               CheckFreshRegistry),
        kProbe("loaded-again", "The module works when it is loaded once more.", CheckReload),
        kProbe("parsers-are-freed", "A parser that was never fed leaves no memory behind.",
               [](Bench& bench) {
                   CheckBalance(bench, [&] {
                       unsigned int handle = 0;
                       bench.methods().pfnCreate(&handle);
                       bench.methods().pfnRelease(handle);
                   });
               }),
        kProbe("delivered-cues-are-freed", "Delivered cues leave no memory behind.",
               CheckCueBalance<true>),
        kProbe("undelivered-cues-are-freed", "So do cues that nobody asked for.",
               CheckCueBalance<false>),
        kProbe("carried-text-is-freed", "So does a block that was never finished.",
               [](Bench& bench) {
                   CheckBalance(bench, [&] {
                       LiveOnce(bench, "00:01.000 --> 00:02.000\nunfinished, and long enough",
                                true);
                   });
               }),
        kProbe("headers-are-freed", "So do headers.", CheckHeaders),
        kProbe("lost-blocks-are-freed", "So do blocks that are lost in the middle.",
               [](Bench& bench) {
                   CheckBalance(bench, [&] {
                       LiveOnce(bench, "00:01.000 --> 00:02.000\n<b>some text<foo>x</b>\n\n", true);
                       LiveOnce(bench, "no time --> 00:02.000\nsome text\n\n", true);
                   });
               }),
        kProbe("exceptions-are-freed", "So does an exception that leaves the module.",
               [](Bench& bench) {
                   CheckBalance(bench, [&] {
                       LiveOnce(bench, "00:01.000 --> 00:02.000 line:-\nsome text\n\n", true);
                   });
               }),
        kProbe("a-long-life", "A parser that lives long does not grow.", CheckLongLife),
    };
}

}  // namespace quill::conform
