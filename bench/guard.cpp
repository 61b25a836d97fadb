// What the guard costs: each call of a player with it and without it, and the difference.
//
//     guard        ends with 1 when an ordinary call costs more than 2 microseconds
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string_view>

#include "bench/measured.h"
#include "support/methods.h"

namespace bench {
namespace {

constexpr int kBatches = 40;
constexpr int kCalls = 500;  // of a batch
constexpr double kMostMicroseconds = 2.0;
constexpr int kRounds =
    20;  // at most: a machine with other work may need some until one is undisturbed

/// Processor time of this thread: what other programs take meanwhile does not count.
double now() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// Microseconds, in the batch that was least disturbed.
struct Costs {
    double feed_and_take = std::numeric_limits<double>::infinity();
    double take_nothing = feed_and_take;
    double set_time = feed_and_take;
};

/// What the guard adds to a call when every chunk completes a cue.
double more_for_a_call(const Costs& bare, const Costs& guarded) {
    return (guarded.feed_and_take - bare.feed_and_take) / 2;
}

void ignore(int /*event*/, void* /*tag*/, void* /*info*/) {}

template <typename Call>
double time_of(Call call) {
    const double begin = now();
    for (int i = 0; i < kCalls; ++i) {
        call();
    }
    return (now() - begin) / kCalls;
}

void measure(const char* path, Costs& costs) {
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    const void* const table =
        library != nullptr ? dlsym(library, "WebVtt_Module_Methods") : nullptr;
    if (table == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(2);
    }
    const support::Methods module = support::methods_at(table);
    support::Handle parser = 0;
    module.create(&parser);
    module.set_callback(parser, nullptr, ignore);
    const auto feed = [&](std::string_view chunk) {
        module.parse(parser, chunk.data(), static_cast<unsigned>(chunk.size()));
    };
    feed("WEBVTT\n\n");
    const auto take = [&] { module.get_result(parser); };
    const auto feed_and_take = [&] { feed("00:01.000 --> 00:02.000\nHello\n\n"), take(); };
    for (int batch = 0; batch < kBatches; ++batch) {
        costs.feed_and_take = std::min(costs.feed_and_take, time_of(feed_and_take));
        costs.take_nothing = std::min(costs.take_nothing, time_of(take));
        costs.set_time =
            std::min(costs.set_time, time_of([&] { module.set_video_time(parser, 0); }));
    }
    module.release(parser);
    dlclose(library);
}

}  // namespace
}  // namespace bench

int main() {
    using bench::Costs;
    std::FILE* const out = bench::silence_standard_output();
    Costs bare;
    Costs guarded;
    int round = 0;
    do {
        bench::measure(QUILLCAPTION_BUILT_MODULE, bare);
        bench::measure(QUILLCAPTION_BUILT_GUARD, guarded);
    } while (bench::more_for_a_call(bare, guarded) > bench::kMostMicroseconds &&
             ++round < bench::kRounds);
    char log[] = P_tmpdir "/quillcaption-bench-XXXXXX";
    close(mkstemp(log));
    setenv("QUILLCAPTION_GUARD_LOG", log, 1);
    Costs recorded;
    bench::measure(QUILLCAPTION_BUILT_GUARD, recorded);
    std::remove(log);
    std::fprintf(out, "microseconds of processor time   module    guard  difference\n");
    const auto print = [out](const char* what, double module, double guard) {
        std::fprintf(out, "%-30s %8.2f %8.2f %11.2f\n", what, module, guard, guard - module);
    };
    print("pfnParse and pfnGetParseResult", bare.feed_and_take, guarded.feed_and_take);
    print("pfnGetParseResult, no cue", bare.take_nothing, guarded.take_nothing);
    print("pfnSetVideoPTS", bare.set_time, guarded.set_time);
    const double more = bench::more_for_a_call(bare, guarded);
    std::fprintf(out, "more for a call, when every chunk completes a cue: %.2f\n", more);
    std::fprintf(out, "and when it is recorded in a file: %.2f\n",
                 bench::more_for_a_call(bare, recorded));
    return more <= bench::kMostMicroseconds ? 0 : 1;
}
