// Plays one shape through the module:
//
//   shape --list                     name, n, full n and exemption of every shape, tab-separated
//   shape NAME N [--passes PASSES]   what was fed, and how long it took
#include <getopt.h>

#include <chrono>
#include <cstdlib>
#include <cstring>

#include "bench/measured.h"
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

int play(const char* name, std::size_t n, unsigned passes) {
    const Shape* const shape = find_shape(name);
    if (shape == nullptr) {
        std::fprintf(stderr, "there is no shape \"%s\"\n", name);
        return 2;
    }
    std::FILE* const report = silence_standard_output();
    const support::Methods& module = load_module();
    const Play made = shape->make(n);
    Tally tally;
    const auto start = std::chrono::steady_clock::now();
    bench_measured([&] { tally = play_shape(module, made); }, passes);
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
        {"list", no_argument, nullptr, 'l'}, {"passes", required_argument, nullptr, 'p'}, {}};
    unsigned passes = 1;
    for (int letter; (letter = getopt_long(argc, argv, "", kOptions, nullptr)) != -1;) {
        switch (letter) {
            case 'l':
                return bench::list_shapes();
            case 'p':
                passes = static_cast<unsigned>(std::strtoul(optarg, nullptr, 10));
                break;
            default:
                return 2;
        }
    }
    if (argc - optind != 2) {
        std::fprintf(stderr, "usage: shape --list | shape NAME N [--passes PASSES]\n");
        return 2;
    }
    return bench::play(argv[optind], std::strtoul(argv[optind + 1], nullptr, 10), passes);
}
