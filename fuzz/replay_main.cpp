// Runs a fuzz target over files, without a fuzzer: every build does this with the corpora.
//
//     fuzz_module FILE|FOLDER...
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

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
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return false;
    }
    // In a block of exactly its size, so that a sanitizer sees a target that reads too far.
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    LLVMFuzzerTestOneInput(block.get(), bytes.size());
    return true;
}

/// The module's diagnostics are nobody's concern here.
void discard_standard_output() {
    const int null = open("/dev/null", O_WRONLY);
    if (null >= 0) {
        dup2(null, STDOUT_FILENO);
        close(null);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<Path> files = find_files(argc - 1, argv + 1);
    discard_standard_output();
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
