// A host that prints while the module does: in its callback, with a buffer of its own for
// std::cout, on another thread, and holding the lock of standard output. What it prints is the same
// each time.
#undef NDEBUG
#include <dlfcn.h>

#include <atomic>
#include <cassert>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <thread>

#include "quillcaption/quillcaption.h"

namespace {

std::FILE* const own_stdout = stdout;
std::streambuf* const own_buffer = std::cout.rdbuf();

/// Between the module's calls, and in the callback, all is the host's own.
void expect_own_streams() {
    assert(stdout == own_stdout && std::cout.rdbuf() == own_buffer && fileno(stdout) == 1);
}

void on_event(WEBVTT_EVENT_T /*event*/, void* /*tag*/, void* info) {
    expect_own_streams();
    std::printf("host: %u cues\n", static_cast<WebvttDataInfo*>(info)->u4CueCount);
    std::cout << "host: and by std::cout" << std::endl;
}

void play(const WebvttModuleMethods& module) {
    constexpr const char* kChunks[] = {
        "WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n\n",
        "00:01.000 --> 00:02.000 size:a%\nx</foo>\n\n",
        "00:01.000 --> 00:02.000 line:-\nx\n\n",
    };
    unsigned parser = 0;
    assert(module.pfnCreate(&parser) == WEBVTT_RESULT_OK);
    module.pfnSetEventNty(parser, nullptr, on_event);
    for (const char* const chunk : kChunks) {
        try {
            module.pfnParse(parser, chunk, static_cast<unsigned>(std::strlen(chunk)));
        } catch (const std::exception& exception) {
            expect_own_streams();
            std::printf("host: %s\n", exception.what());
        }
        module.pfnGetParseResult(parser);
        expect_own_streams();
    }
    module.pfnRelease(parser);
}

/// Prints nothing, but all that takes: a line would stand anywhere among the module's.
void disturb(const std::atomic<bool>& is_over) {
    while (!is_over) {
        flockfile(stdout);
        std::printf("%s", "");
        std::cout << "" << std::flush;
        funlockfile(stdout);
    }
}

}  // namespace

int main(int argc, char** argv) {
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    assert(library != nullptr);
    const WebvttModuleMethods& module =
        *static_cast<const WebvttModuleInfo*>(dlsym(library, "WEBVTT_MODULE_INFO"))->prMethods;
    play(module);
    flockfile(stdout);
    play(module);
    funlockfile(stdout);
    // A stream that has failed stays silent, and failed.
    std::cout.setstate(std::ios::failbit);
    play(module);
    assert(std::cout.fail());
    std::cout.clear();
    std::atomic<bool> is_over{false};
    std::thread other(disturb, std::cref(is_over));
    for (int round = 0; round < 50; ++round) {
        unsigned parser = 0;
        assert(module.pfnCreate(&parser) == WEBVTT_RESULT_OK);
        module.pfnParse(parser, "WEBVTT\n\nx\n\n", 11);
        module.pfnRelease(parser);
    }
    is_over = true;
    other.join();
    std::puts("host: over");
    assert(dlclose(library) == 0);
    expect_own_streams();
}
