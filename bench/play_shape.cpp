// Plays one shape through the module:
//
//   shape --list                     name, n, full n and exemption of every shape, tab-separated
//   shape NAME N [--passes PASSES]   what was fed, and how long it took
//         --quiet                    with what the module prints dropped at the first function
//         --calls                    the calls alone, with one letter in each
//   shape --all DIVISOR              each shape, quietly, at a part of its n, and behind it its
//   calls
//                                    alone; prints the bytes of each and its name, tab-separated
#include <getopt.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "bench/measured.h"
#include "bench/quiet_printing.h"
#include "bench/shapes.h"

namespace bench {
namespace {

int list_shapes() {
    for (const Shape& shape : shapes()) {
        std::printf("%s\t%zu\t%zu\t%s\n", shape.name.data(), shape.n, shape.full_n,
                    shape.exempt.empty() ? "" : shape.exempt.data());
    }
    return 0;
}

int play_all(std::size_t divisor) {
    std::FILE* const report = silence_standard_output();
    const support::Methods& module = load_module();
    set_quiet_printing(true);
    for (const Shape& shape : shapes()) {
        const Play whole = shape.make(std::max<std::size_t>(shape.n / divisor, 1));
        const Play calls = empty_calls_of(whole);
        Tally tally;
        bench_measured([&] { tally = play_shape(module, whole); }, 1);
        bench_measured([&] { play_shape(module, calls); }, 1);
        std::fprintf(report, "%zu\t%s\n", tally.bytes, shape.name.data());
    }
    std::fclose(report);
    return 0;
}

struct Options {
    unsigned passes = 1;
    bool quiet = false;
    bool calls_only = false;
};

int play(const char* name, std::size_t n, const Options& options) {
    const Shape* const shape = find_shape(name);
    if (shape == nullptr) {
        std::fprintf(stderr, "there is no shape \"%s\"\n", name);
        return 2;
    }
    std::FILE* const report = silence_standard_output();
    const support::Methods& module = load_module();
    const Play whole = shape->make(n);
    const Play made = options.calls_only ? empty_calls_of(whole) : whole;
    set_quiet_printing(options.quiet);
    Tally tally;
    const auto start = std::chrono::steady_clock::now();
    bench_measured([&] { tally = play_shape(module, made); }, options.passes);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::fprintf(report, "bytes %zu\ncalls %zu\ncues %zu\nseconds %.6f\n", tally.bytes, tally.calls,
                 tally.cues, took.count());
    std::fclose(report);
    return 0;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    static const option kOptions[] = {
        {"list", no_argument, nullptr, 'l'},      {"passes", required_argument, nullptr, 'p'},
        {"quiet", no_argument, nullptr, 'q'},     {"calls", no_argument, nullptr, 'c'},
        {"all", required_argument, nullptr, 'a'}, {}};
    bench::Options options;
    for (int letter; (letter = getopt_long(argc, argv, "", kOptions, nullptr)) != -1;) {
        switch (letter) {
            case 'l':
                return bench::list_shapes();
            case 'a':
                return bench::play_all(std::strtoul(optarg, nullptr, 10));
            case 'p':
                options.passes = static_cast<unsigned>(std::strtoul(optarg, nullptr, 10));
                break;
            case 'q':
                options.quiet = true;
                break;
            case 'c':
                options.calls_only = true;
                break;
            default:
                return 2;
        }
    }
    if (argc - optind != 2) {
        std::fprintf(stderr,
                     "usage: shape --list | shape --all DIVISOR | shape NAME N [--passes PASSES] "
                     "[--quiet] [--calls]\n");
        return 2;
    }
    return bench::play(argv[optind], std::strtoul(argv[optind + 1], nullptr, 10), options);
}
