#include "tools/conform/timing.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <limits>
#include <sstream>

#include "support/player.h"
#include "support/stdout_capture.h"
#include "support/track_generator.h"
#include "tools/console/failure.h"
#include "tools/console/json.h"
#include "tools/host/isolated_run.h"
#include "tools/host/module_handle.h"

namespace quill::conform {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int kFewestTries = 5;
constexpr Microseconds kLeastTime = std::chrono::milliseconds(300);
constexpr std::size_t kTrackSize = 250000;
constexpr double kMegabyte = 1e6;
constexpr std::size_t kFileChunk = 65536;
constexpr std::size_t kPacketChunk = 1460;
constexpr char kFirstCue[] = "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n";

// Times of two kinds, taken side by side, each the best of its tries.
struct Best {
    std::size_t cues = 0;  // of the last try
    std::array<Microseconds, 2> times = {Microseconds::max(), Microseconds::max()};
};

// Tries until the times say something: a few times at least, and for a while.
template <typename Try>
Best TakeBest(Try one_try) {
    Best best;
    const Clock::time_point begin = Clock::now();
    for (int tries = 0; tries < kFewestTries || Clock::now() - begin < kLeastTime; ++tries) {
        one_try(best);
    }
    return best;
}

void KeepBetter(Microseconds time, Microseconds& best) {
    best = std::min(best, time);
}

// Loading, and all from there to the callback.
Best TimeStart(const std::string& module) {
    return TakeBest([&module](Best& best) {
        const Clock::time_point begin = Clock::now();
        const host::ModuleHandle handle(module);
        const Clock::time_point loaded = Clock::now();
        const support::Methods methods = support::methods_at(&handle.methods());
        support::Player player(methods);
        player.feed(kFirstCue);
        player.deliver();
        KeepBetter(loaded - begin, best.times[0]);
        KeepBetter(Clock::now() - loaded, best.times[1]);
        best.cues = player.cue_count();
    });
}

// A whole track, from Create to Release.
Best TimeTrack(const std::string& module, const std::string& track, std::size_t chunk_size) {
    const host::ModuleHandle handle(module);
    const support::Methods methods = support::methods_at(&handle.methods());
    return TakeBest([&](Best& best) {
        const Clock::time_point begin = Clock::now();
        {
            support::Player player(methods);
            player.feed_in_chunks(track, chunk_size);
            best.cues = player.cue_count();
        }
        KeepBetter(Clock::now() - begin, best.times[0]);
    });
}

// Lets a child take the times, and reads what it tells of them.
Best TakeInChild(const std::string& module, std::chrono::seconds timeout, const std::string& what,
                 unsigned cues, const std::function<Best()>& take) {
    const host::IsolatedEnd end = host::RunIsolated(
        [&take](host::Channel& channel) {
            const support::Quiet quiet;
            const Best best = take();
            std::ostringstream told;
            told << best.cues << ' ' << best.times[0].count() << ' ' << best.times[1].count();
            channel.Write(told.str());
        },
        timeout);
    Best best;
    std::array<double, 2> times = {};
    if (!(std::istringstream(end.written) >> best.cues >> times[0] >> times[1])) {
        throw console::Failure(console::kExitTrack, "cannot time " + what + ": " + module + " " +
                                                        host::DescribeEnd(end));
    }
    if (best.cues != cues) {
        throw console::Failure(console::kExitTrack,
                               "cannot time " + what + ": " + module + " delivered " +
                                   std::to_string(best.cues) + " cues of " + std::to_string(cues) +
                                   "; quill conform without --time says what is wrong with it");
    }
    std::transform(times.begin(), times.end(), best.times.begin(),
                   [](double time) { return Microseconds(time); });
    return best;
}

class TimePrinter {
  public:
    // The output must outlive the printer.
    TimePrinter(console::Output& output, bool as_json) : output_(output), as_json_(as_json) {}

    void Print(const char* what, Microseconds time) {
        PrintRow({{"what", what}, {"us", time.count()}}, "%-32s %12.1f us\n", what, time.count());
    }
    void PrintHeading() {
        if (!as_json_) {
            output_.Write("dialogue                             us a cue      us a MB\n");
        }
    }
    void Print(const std::string& style, std::size_t chunk_size, double a_cue, double a_megabyte) {
        const std::string what = style + ", chunks of " + std::to_string(chunk_size) + " B";
        PrintRow({{"what", style},
                  {"chunk", chunk_size},
                  {"us_a_cue", a_cue},
                  {"us_a_megabyte", a_megabyte}},
                 "%-32s %12.3f %12.0f\n", what.c_str(), a_cue, a_megabyte);
    }

  private:
    template <typename... Values>
    void PrintRow(const console::Json& record, const char* format, Values... values) {
        std::array<char, 120> line;
        std::snprintf(line.data(), line.size(), format, values...);
        output_.Write(as_json_ ? console::JsonLine(record) : line.data());
    }

    console::Output& output_;
    bool as_json_;
};

}  // namespace

void PrintTimes(console::Output& output, const std::string& module, std::chrono::seconds timeout,
                bool as_json) {
    TimePrinter printer(output, as_json);
    const Best start =
        TakeInChild(module, timeout, "the start", 1, [&module] { return TimeStart(module); });
    printer.Print("loading", start.times[0]);
    printer.Print("the first cue", start.times[1]);
    printer.PrintHeading();
    const auto print_dialogue = [&](const support::Style& style, std::size_t chunk_size) {
        const std::string name(style.name);
        unsigned cues = 0;
        const std::string track = support::make_dialogue(kTrackSize, style, &cues);
        const double time = TakeInChild(module, timeout, name, cues,
                                        [&] { return TimeTrack(module, track, chunk_size); })
                                .times[0]
                                .count();
        printer.Print(name, chunk_size, time / cues,
                      time / static_cast<double>(track.size()) * kMegabyte);
    };
    print_dialogue(support::kStyles[0], kPacketChunk);
    for (const support::Style& style : support::kStyles) {
        print_dialogue(style, kFileChunk);
    }
}

}  // namespace quill::conform
