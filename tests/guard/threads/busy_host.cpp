// A host that knows no rules: every thread makes random calls on parsers that they all share, in
// callbacks too.
//
//     busy_host MODULE ROUNDS
#include <dlfcn.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>
#include <vector>

#include "quillcaption/quillcaption.h"

namespace {

constexpr unsigned kThreads = 4;
constexpr unsigned kDeepest = 3;  // calls in callbacks of calls in callbacks

const WebvttModuleMethods* methods;
std::array<std::atomic<unsigned>, 3> handles;
std::atomic<unsigned long> cues{0};

void call_something();

thread_local std::mt19937 random_numbers;
thread_local unsigned deep = 0;

void on_event(WEBVTT_EVENT_T /*event*/, void* /*tag*/, void* info) {
    const auto* cue = static_cast<WebvttDataInfo*>(info)->prCueList;
    for (; cue != nullptr; cue = cue->prNext) {
        cues += cue->pcText[0] == 't';
    }
    if (deep < kDeepest) {
        ++deep;
        call_something();
        --deep;
    }
}

void call_something() {
    std::atomic<unsigned>& handle = handles[random_numbers() % handles.size()];
    switch (random_numbers() % 8) {
        case 0: {
            unsigned created = 0;
            methods->pfnCreate(&created);
            methods->pfnSetEventNty(created, nullptr, on_event);
            methods->pfnRelease(handle.exchange(created));
            break;
        }
        case 1:
            methods->pfnRelease(handle);
            break;
        case 2:
            methods->pfnSetVideoPTS(handle, random_numbers());
            break;
        case 3:
            methods->pfnParse(handle, nullptr, 0);
            break;
        case 4:
        case 5:
            methods->pfnParse(handle, "WEBVTT\n\n00:01.000 --> 00:02.000\nx\n\n", 34);
            break;
        default:
            methods->pfnGetParseResult(handle);
    }
}

}  // namespace

int main(int argc, char** argv) {
    void* const library = argc == 3 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    const void* const info = library != nullptr ? dlsym(library, "WEBVTT_MODULE_INFO") : nullptr;
    if (info == nullptr) {
        std::fprintf(stderr, "usage: busy_host MODULE ROUNDS: %s\n", dlerror());
        return 2;
    }
    methods = static_cast<const WebvttModuleInfo*>(info)->prMethods;
    const unsigned long rounds = std::strtoul(argv[2], nullptr, 10);
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < kThreads; ++seed) {
        threads.emplace_back([seed, rounds] {
            random_numbers.seed(seed);
            for (unsigned long round = 0; round < rounds; ++round) {
                call_something();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::atomic<unsigned>& handle : handles) {
        methods->pfnRelease(handle);
    }
    std::printf("%lu cues\n", cues.load());
    return dlclose(library);
}
