// Runs a fuzz target over files, without a fuzzer: every build does this with the corpora.
//
//     fuzz_module [--changes N] FILE|FOLDER...
//
// With --changes it also runs N changes of each file, the same ones each time, if the target has a
// mutator of its own.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "support/exact_block.h"
#include "support/stdout_capture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" [[gnu::weak]] std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                                             std::size_t largest, unsigned seed);
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t largest);

/// In libFuzzer's place: drops the first half.
std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t /*largest*/) {
    return static_cast<std::size_t>(std::copy(data + size / 2, data + size, data) - data);
}

namespace {

using Path = std::filesystem::path;

constexpr std::size_t kLargestGrowth = 256;

/// The files, and those in the folders, in an order that does not depend on the file system.
std::vector<Path> find_files(int count, char** names) {
    std::vector<Path> files;
    for (int i = 0; i < count; ++i) {
        if (std::filesystem::is_directory(names[i])) {
            for (const auto& entry : std::filesystem::directory_iterator(names[i])) {
                files.push_back(entry.path());
            }
        } else {
            files.emplace_back(names[i]);
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void run(std::string_view bytes) {
    support::ExactBlock block(bytes);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(block.data()), block.size());
}

/// Each change is made to what the one before has left.
void run_changes(std::string bytes, unsigned changes) {
    for (unsigned seed = 1; seed <= changes; ++seed) {
        std::size_t size = bytes.size();
        bytes.resize(size + kLargestGrowth);
        size = LLVMFuzzerCustomMutator(reinterpret_cast<std::uint8_t*>(bytes.data()), size,
                                       bytes.size(), seed);
        bytes.resize(size);
        run(bytes);
    }
}

bool replay(const Path& file, unsigned changes) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return false;
    }
    run(bytes);
    if (LLVMFuzzerCustomMutator != nullptr) {
        run_changes(bytes, changes);
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const bool is_to_change = argc > 2 && std::string_view(argv[1]) == "--changes";
    const int first = is_to_change ? 3 : 1;
    const auto changes = static_cast<unsigned>(is_to_change ? std::atoi(argv[2]) : 0);
    const std::vector<Path> files = find_files(argc - first, argv + first);
    const support::Quiet quiet;  // the module's diagnostics are nobody's concern here
    for (const Path& file : files) {
        // Before it runs: when it crashes, this line is the last one.
        std::fprintf(stderr, "%s\n", file.c_str());
        if (!replay(file, changes)) {
            return 1;
        }
    }
    std::fprintf(stderr, "%zu inputs replayed\n", files.size());
    return files.empty() ? 1 : 0;
}
