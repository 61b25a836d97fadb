// damaged_inspections COUNT SEED DAMAGED MODULE SYSROOT FROM-TO...: inspects MODULE with SYSROOT,
// again and again, each time with a few bytes overwritten in one of those parts of the file
// DAMAGED: the module, or a library of the board. Each time there has to be a verdict, in time.
// Prints how many ended in which way, and in the end the longest processor time; the exit code is 1
// when one was not as it must be.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tools/console/failure.h"
#include "tools/inspect/inspect_printer.h"
#include "tools/inspect/inspection.h"

namespace {

using Random = std::mt19937;

constexpr double kMostSeconds = 1;
constexpr std::size_t kMostBytes = 16;

struct Part {
    std::size_t from;
    std::size_t to;
};

std::size_t Draw(Random& random, std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
}

// Often by values at which sums and sizes go wrong.
void Damage(std::string& bytes, const std::vector<Part>& parts, Random& random) {
    constexpr std::array<char, 5> kEdges = {'\0', '\1', '\x7F', '\x80', '\xFF'};
    constexpr std::array<std::size_t, 4> kLengths = {1, 1, 4, kMostBytes};
    const Part& part = parts[Draw(random, parts.size())];
    const std::size_t at = part.from + Draw(random, part.to - part.from);
    const std::size_t length = kLengths[Draw(random, kLengths.size())];
    const bool is_edge = Draw(random, 2) == 0;
    const char edge = kEdges[Draw(random, kEdges.size())];
    for (std::size_t i = at; i < at + length && i < bytes.size(); ++i) {
        bytes[i] = is_edge ? edge : static_cast<char>(Draw(random, 256));
    }
}

// The verdict's first words; empty when there is none.
std::string Verdict(const std::string& module, const std::string& sysroot) {
    try {
        const quill::console::Json report = quill::inspect::InspectModule(module, sysroot);
        const std::string text = quill::inspect::FormatInspectionAsText(report);
        const std::size_t blank = text.find("\n\n");
        if (blank == std::string::npos || quill::console::JsonLine(report).empty() ||
            (report["loaded"] == false && report["problems"].empty())) {
            return "";
        }
        const std::string verdict = text.substr(blank + 2);
        return verdict.substr(0, verdict.find_first_of(":\n"));
    } catch (const quill::console::Failure& failure) {
        return failure.code() == quill::console::kExitModule ? "unreadable" : "";
    }
}

double Seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

std::string Content(const char* path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 7) {
        std::fprintf(stderr, "usage: see %s\n", __FILE__);
        return 2;
    }
    const unsigned long count = std::strtoul(argv[1], nullptr, 10);
    const unsigned long seed = std::strtoul(argv[2], nullptr, 10);
    const std::string whole = Content(argv[3]);
    std::vector<Part> parts;
    for (int i = 6; i < argc; ++i) {
        char* middle = nullptr;
        const std::size_t from = std::strtoul(argv[i], &middle, 10);
        parts.push_back({from, std::strtoul(middle + 1, nullptr, 10)});
    }
    std::map<std::string, unsigned> verdicts;
    double longest = 0;
    int status = 0;
    for (unsigned long number = seed; number < seed + count; ++number) {
        Random random(number);
        std::string bytes = whole;
        Damage(bytes, parts, random);
        std::ofstream(argv[3], std::ios::binary) << bytes;
        const double began = Seconds();
        const std::string verdict = Verdict(argv[4], argv[5]);
        const double spent = Seconds() - began;
        longest = spent > longest ? spent : longest;
        ++verdicts[verdict];
        if (verdict.empty() || spent > kMostSeconds) {
            std::printf("WRONG: seed %lu, %.1f s, verdict \"%s\"\n", number, spent,
                        verdict.c_str());
            status = 1;
        }
    }
    std::ofstream(argv[3], std::ios::binary) << whole;
    for (const auto& [verdict, times] : verdicts) {
        std::printf("%6u %s\n", times, verdict.c_str());
    }
    std::printf("%lu damaged copies: %.3f s at the most\n", count, longest);
    return status;
}
