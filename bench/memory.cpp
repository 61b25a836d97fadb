// What the module takes from the heap and from the stack, shape by shape.
//
//   memory [--quick]     a table; ends with 1 when a limit is broken
//
// "stack" is without what printing diagnostics takes, "printing" is with it; both count the few
// dozen bytes of the player and its callback. Limits: no call goes deeper than 8 KB, the heap takes
// at most three times what was fed and 8 KB, header objects apart, and is as it was after a million
// cues (a hundred thousand with --quick) were delivered.
#include <cstdlib>
#include <cstring>

#include "bench/measured.h"
#include "bench/quiet_printing.h"
#include "bench/shapes.h"
#include "bench/stack_probe.h"
#include "support/memory.h"
#include "support/player.h"
#include "support/track_generator.h"

namespace bench {
namespace {

using support::Memory;

constexpr std::size_t kMostStack = 8192;
constexpr std::size_t kMostHeapFixed = 8192;
constexpr double kMostHeapAByte = 3.0;
constexpr std::size_t kDialogueSize = 200000;
constexpr unsigned kPlainCues = 2000;

/// Of everything that the parsers take, themselves included.
std::size_t heap_peak_of(const support::Methods& module, const Play& play) {
    Memory& heap = Memory::of_program();
    heap.restart_peak();
    const std::size_t before = heap.live_bytes();
    play_shape(module, play);
    return heap.peak_bytes() - before;
}

std::size_t quiet_stack_peak_of(const support::Methods& module, const Play& play) {
    const std::size_t dropped_before = dropped_prints();
    set_quiet_printing(true);
    const std::size_t peak = stack_peak_of([&] { play_shape(module, play); });
    set_quiet_printing(false);
    if (dropped_prints() == dropped_before) {
        std::fprintf(stderr, "the module printed nothing that could be dropped\n");
        std::exit(2);
    }
    return peak;
}

/// False when a call went too deep or took too much.
bool print_shape(std::FILE* report, const support::Methods& module, const Shape& shape) {
    const Play play = shape.make(shape.n);
    const auto bytes = static_cast<double>((play.opening.size() + play.text.size()) * play.parsers);
    const std::size_t heap = heap_peak_of(module, play);
    const std::size_t quiet = quiet_stack_peak_of(module, play);
    const std::size_t printing = stack_peak_of([&] { play_shape(module, play); });
    const bool too_deep = printing > kMostStack;
    // Header objects, and parsers, are kept whatever becomes of the text.
    const bool keeps_text_only = play.opening == Play().opening && play.parsers == 1;
    const bool too_much =
        keeps_text_only && static_cast<double>(heap) > kMostHeapAByte * bytes + kMostHeapFixed;
    std::fprintf(report, "%-34s %10.0f %10zu %8.2f %8zu %8zu%s%s\n", shape.name.data(), bytes, heap,
                 static_cast<double>(heap) / bytes, quiet, printing, too_deep ? "  TOO DEEP" : "",
                 too_much ? "  TOO MUCH" : "");
    std::fflush(report);
    return !too_deep && !too_much;
}

bool print_shapes(std::FILE* report, const support::Methods& module) {
    std::fprintf(report, "%-34s %10s %10s %8s %8s %8s\n", "", "bytes fed", "heap peak", "a byte",
                 "stack", "printing");
    bool fine = true;
    for (const Shape& shape : shapes()) {
        fine = print_shape(report, module, shape) && fine;
    }
    return fine;
}

/// Allocations a cue, and what is left over: nothing may be.
bool print_cues(std::FILE* report, const support::Methods& module, const char* what,
                const std::string& track, std::size_t chunk_size, unsigned wanted) {
    support::Player player(module);
    player.feed_in_chunks(track, chunk_size);  // what is kept for the next track is there now
    const std::string cues = track.substr(track.find("\n\n") + 2);
    Memory& heap = Memory::of_program();
    heap.restart_peak();
    const Memory before = heap;
    const std::size_t cues_before = player.cue_count();
    while (player.cue_count() - cues_before < wanted) {
        player.feed_in_chunks(cues, chunk_size);
    }
    const Memory after = heap;
    const auto count = static_cast<double>(player.cue_count() - cues_before);
    const bool grew =
        after.live_bytes() != before.live_bytes() || after.live_blocks() != before.live_blocks();
    std::fprintf(report, "%-34s %10.0f %10.2f %10zu %8ld %8ld%s\n", what, count,
                 static_cast<double>(after.allocations() - before.allocations()) / count,
                 after.peak_bytes() - before.live_bytes(),
                 static_cast<long>(after.live_bytes()) - static_cast<long>(before.live_bytes()),
                 after.live_blocks() - before.live_blocks(), grew ? "  GROWS" : "");
    return !grew;
}

bool print_growth(std::FILE* report, const support::Methods& module, unsigned wanted) {
    std::fprintf(report, "%-34s %10s %10s %10s %8s %8s\n", "", "cues", "allocs", "heap peak",
                 "growth", "growth");
    std::fprintf(report, "%-34s %10s %10s %10s %8s %8s\n", "", "", "a cue", "bytes", "bytes",
                 "blocks");
    const std::string dialogue = support::make_dialogue(kDialogueSize);
    const std::string plain = support::make_plain_cues(kPlainCues);
    const std::size_t plain_cue_size = (plain.size() - plain.find("\n\n")) / kPlainCues;
    const struct {
        const char* what;
        const std::string& track;
        std::size_t chunk_size;
    } kRows[] = {
        {"dialogue, 64 KB chunks", dialogue, 65536},
        {"dialogue, 1460 B chunks", dialogue, 1460},
        {"plain cues, 64 KB chunks", plain, 65536},
        {"plain cues, 1460 B chunks", plain, 1460},
        {"plain cues, a chunk each", plain, plain_cue_size},
    };
    bool fine = true;
    for (const auto& row : kRows) {
        fine = print_cues(report, module, row.what, row.track, row.chunk_size, wanted) && fine;
    }
    return fine;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
    const bool quick = argc > 1 && std::strcmp(argv[1], "--quick") == 0;
    std::FILE* const report = bench::silence_standard_output();
    const support::Methods& module = bench::load_module();
    const bool shapes_fine = bench::print_shapes(report, module);
    std::fputc('\n', report);
    const bool growth_fine = bench::print_growth(report, module, quick ? 100000 : 1000000);
    std::fclose(report);
    return shapes_fine && growth_fine ? 0 : 1;
}
