#include "host/support/transcript.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host/support/transcript_player.h"

namespace support::host {
namespace {

/// Whether a line belongs to the call above it: the rest of its bytes, or what is expected of it.
bool is_indented(const std::string& line) {
    return line.compare(0, 1, " ") == 0;
}

bool continues_call(const std::string& line) {
    const std::size_t at = line.find_first_not_of(' ');
    return is_indented(line) && at != std::string::npos && line[at] == '"';
}

void read_file(const std::filesystem::path& path, std::vector<Case>& cases) {
    std::ifstream file(path);
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.compare(0, 3, "== ") == 0) {
            cases.push_back({path.stem().string(), number, line.substr(3), ""});
        } else if (!line.empty() && line[0] != '#') {
            if (cases.empty() || cases.back().file != path.stem()) {
                throw std::runtime_error(path.string() + ": a call before the first title");
            }
            cases.back().text += line + "\n";
        }
    }
}

}  // namespace

std::vector<Case> read_cases(const std::string& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Case> cases;
    for (const auto& path : paths) {
        read_file(path, cases);
    }
    return cases;
}

std::string play(const Methods& methods, const Case& wanted) {
    TranscriptPlayer player(methods);
    std::string text;
    std::string call;
    const auto make_call = [&] {
        if (!call.empty()) {
            text += call + player.call(call);
            call.clear();
        }
    };
    std::istringstream lines(wanted.text);
    for (std::string line; std::getline(lines, line);) {
        if (!is_indented(line)) {
            make_call();
            call = line + "\n";
        } else if (continues_call(line)) {
            call += line + "\n";
        }
    }
    make_call();
    return text;
}

}  // namespace support::host
