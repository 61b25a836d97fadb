// Runs a fuzz target over files, without a fuzzer: every build does this with the corpora.
//
//     fuzz_module FILE|FOLDER...
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/exact_block.h"
#include "support/stdout_capture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Path = std::filesystem::path;

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

bool replay(const Path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return false;
    }
    support::ExactBlock block(bytes);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(block.data()), block.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<Path> files = find_files(argc - 1, argv + 1);
    const support::Quiet quiet;  // the module's diagnostics are nobody's concern here
    for (const Path& file : files) {
        // Before it runs: when it crashes, this line is the last one.
        std::fprintf(stderr, "%s\n", file.c_str());
        if (!replay(file)) {
            return 1;
        }
    }
    std::fprintf(stderr, "%zu inputs replayed\n", files.size());
    return files.empty() ? 1 : 0;
}
