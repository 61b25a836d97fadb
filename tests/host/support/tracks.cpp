#include "host/support/tracks.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace support::host {

std::string sample(const std::string& name) {
    std::ifstream file(std::string(QUILLCAPTION_SAMPLES) + "/" + name, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.empty()) {
        std::fprintf(stderr, "there is no sample %s\n", name.c_str());
        std::abort();
    }
    return bytes;
}

std::vector<std::string> sample_names() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(QUILLCAPTION_SAMPLES)) {
        if (entry.path().extension() == ".vtt") {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::size_t first_line_size(std::string_view track) {
    const std::size_t end = track.find_first_of("\r\n");
    return track.substr(end, 2) == "\r\n" ? end + 2 : end + 1;
}

std::size_t header_size(std::string_view track) {
    std::size_t size = track.size();
    for (const std::string_view blank : {"\n\n", "\r\r", "\r\n\r"}) {
        const std::size_t at = track.find(blank);
        size = at != std::string_view::npos ? std::min(size, at + blank.size()) : size;
    }
    return size;
}

std::string with_line_ends(std::string_view track, std::string_view line_end) {
    std::string changed;
    for (const char c : track) {
        if (c == '\n') {
            changed += line_end;
        } else {
            changed += c;
        }
    }
    return changed;
}

std::vector<std::string_view> chunks_of(std::string_view track, std::size_t size,
                                        std::size_t first_size) {
    std::vector<std::string_view> chunks;
    for (std::size_t at = 0; at < track.size();) {
        const std::size_t wanted = at == 0 ? std::max(size, first_size) : size;
        chunks.push_back(track.substr(at, wanted));
        at += chunks.back().size();
    }
    return chunks;
}

std::vector<std::string_view> blocks_of(std::string_view track) {
    std::vector<std::string_view> blocks;
    while (!track.empty()) {
        const std::size_t end = track.find("\n\n");
        blocks.push_back(track.substr(0, end == std::string_view::npos ? end : end + 2));
        track.remove_prefix(blocks.back().size());
    }
    return blocks;
}

}  // namespace support::host
