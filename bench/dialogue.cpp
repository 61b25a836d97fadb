// Dialogue through the module, beside two limits on the same text:
//
//   dialogue [--style NAME] [--size BYTES]...   times, as a table
//   dialogue --time STYLE:SUBJECT... [--size BYTES]
//                                               nanoseconds a byte of each, a line each
//   dialogue --print [--style NAME] [--size BYTES]
//                                               the track itself
//   dialogue --only SUBJECT [--style NAME] [--size BYTES] [--passes N]
//                                               one subject, for an instruction counter
//
// A subject is "scan", "copy" (scan_limits.h), or a chunk size for the module. Styles are those of
// track_generator.h. Times are the processor's, and the best of many passes.
#include <getopt.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <limits>
#include <string>
#include <vector>

#include "bench/measured.h"
#include "bench/scan_limits.h"
#include "support/player.h"
#include "support/track_generator.h"

namespace bench {
namespace {

constexpr std::size_t kChunkSizes[] = {65536, 1460};  // a file's buffer, a network packet
constexpr std::size_t kDefaultSize = 1000000;
constexpr unsigned kFewestPasses = 5;

struct Subject {
    std::string name;
    std::function<void()> work;
    double best = std::numeric_limits<double>::infinity();  // seconds
};

struct Track {
    Track(std::size_t size, const support::Style& style)
        : text(support::make_dialogue(size, style, &cues)) {}
    unsigned cues = 0;
    std::string text;
};

void play(const support::Methods& module, const Track& track, std::size_t chunk_size) {
    support::Player player(module);
    player.feed_in_chunks(track.text, chunk_size);
    if (player.cue_count() != track.cues) {
        std::fprintf(stderr, "%u cues were fed but %zu came out\n", track.cues, player.cue_count());
        std::exit(1);
    }
}

Subject make_subject(const std::string& name, const support::Methods& module, const Track& track) {
    if (name == "scan") {
        return {name, [&track] { scan_lines(track.text); }};
    }
    if (name == "copy") {
        return {name, [&track] { copy_lines(track.text); }};
    }
    const std::size_t chunk_size = std::strtoul(name.c_str(), nullptr, 10);
    if (chunk_size == 0) {
        std::fprintf(stderr, "not a subject: %s\n", name.c_str());
        std::exit(2);
    }
    return {name, [&module, &track, chunk_size] { play(module, track, chunk_size); }};
}

double processor_seconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double seconds_of(const std::function<void()>& work) {
    const double start = processor_seconds();
    bench_measured(work, 1);
    return processor_seconds() - start;
}

/// In turns, so that a machine that is busy for a while slows all of them; the best pass counts.
void take_times(std::vector<Subject>& subjects, double seconds_for_each) {
    double spent = 0.0;
    const double allowed = seconds_for_each * static_cast<double>(subjects.size());
    for (unsigned pass = 0; pass < kFewestPasses || spent < allowed; ++pass) {
        for (Subject& subject : subjects) {
            const double seconds = seconds_of(subject.work);
            subject.best = std::min(subject.best, seconds);
            spent += seconds;
        }
    }
}

void print_times(std::FILE* report, const support::Methods& module, const Track& track) {
    std::vector<Subject> subjects;
    for (const char* const limit : {"scan", "copy"}) {
        subjects.push_back(make_subject(limit, module, track));
    }
    for (const std::size_t chunk_size : kChunkSizes) {
        subjects.push_back(make_subject(std::to_string(chunk_size), module, track));
    }
    constexpr double kSecondsForEach = 2.0;
    take_times(subjects, kSecondsForEach);

    const auto bytes = static_cast<double>(track.text.size());
    std::fprintf(report, "%zu bytes, %u cues of %.1f bytes\n", track.text.size(), track.cues,
                 bytes / track.cues);
    std::fprintf(report, "%-22s %10s %10s %10s %10s\n", "", "MB/s", "ns a cue", "x scan", "x copy");
    for (const Subject& subject : subjects) {
        const bool limit = subject.name == "scan" || subject.name == "copy";
        std::fprintf(report, "%-22s %10.1f %10.1f %10.2f %10.2f\n",
                     (limit ? "limit: " + subject.name : "module, " + subject.name).c_str(),
                     bytes / subject.best / 1e6, subject.best * 1e9 / track.cues,
                     subject.best / subjects[0].best, subject.best / subjects[1].best);
    }
}

int print_times_of(std::FILE* report, const support::Methods& module,
                   const std::vector<std::string>& wanted, std::size_t size) {
    std::deque<Track> tracks;  // which the subjects point at
    std::vector<Subject> subjects;
    for (const std::string& one : wanted) {
        const std::size_t colon = std::min(one.find(':'), one.size() - 1);
        const support::Style* const style = support::find_style(one.substr(0, colon));
        if (style == nullptr) {
            std::fprintf(stderr, "not a style and a subject: %s\n", one.c_str());
            return 2;
        }
        tracks.emplace_back(size, *style);
        subjects.push_back(make_subject(one.substr(colon + 1), module, tracks.back()));
    }
    constexpr double kSecondsForEach = 0.5;  // an ordinary test waits for it
    take_times(subjects, kSecondsForEach);
    for (std::size_t i = 0; i < subjects.size(); ++i) {
        std::fprintf(report, "%s %.4f\n", wanted[i].c_str(),
                     subjects[i].best * 1e9 / static_cast<double>(tracks[i].text.size()));
    }
    return 0;
}

int run(int argc, char** argv) {
    static const option kOptions[] = {{"only", required_argument, nullptr, 'o'},
                                      {"print", no_argument, nullptr, 'w'},
                                      {"style", required_argument, nullptr, 't'},
                                      {"size", required_argument, nullptr, 's'},
                                      {"passes", required_argument, nullptr, 'p'},
                                      {"time", required_argument, nullptr, 'i'},
                                      {}};
    std::string only;
    std::vector<std::string> timed;
    bool prints = false;
    const support::Style* style = &support::kStyles[0];
    std::vector<std::size_t> sizes;
    unsigned passes = 1;
    for (int letter; (letter = getopt_long(argc, argv, "", kOptions, nullptr)) != -1;) {
        switch (letter) {
            case 'o':
                only = optarg;
                break;
            case 'i':
                timed.emplace_back(optarg);
                break;
            case 'w':
                prints = true;
                break;
            case 't':
                style = support::find_style(optarg);
                if (style == nullptr) {
                    std::fprintf(stderr, "not a style: %s\n", optarg);
                    return 2;
                }
                break;
            case 's':
                sizes.push_back(std::strtoul(optarg, nullptr, 10));
                break;
            case 'p':
                passes = static_cast<unsigned>(std::strtoul(optarg, nullptr, 10));
                break;
            default:
                return 2;
        }
    }
    if (sizes.empty()) {
        sizes.push_back(kDefaultSize);
    }

    if (prints) {
        const Track track(sizes[0], *style);
        return std::fwrite(track.text.data(), 1, track.text.size(), stdout) == track.text.size()
                   ? 0
                   : 1;
    }

    std::FILE* const report = silence_standard_output();
    const support::Methods& module = load_module();
    if (!timed.empty()) {
        return print_times_of(report, module, timed, sizes[0]);
    }
    if (only.empty()) {
        for (const std::size_t size : sizes) {
            print_times(report, module, Track(size, *style));
        }
        return 0;
    }
    const Track track(sizes[0], *style);
    bench_measured(make_subject(only, module, track).work, passes);
    std::fprintf(report, "bytes %zu\ncues %u\n", track.text.size(), track.cues);
    std::fclose(report);
    return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    return bench::run(argc, argv);
}
