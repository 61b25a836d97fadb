#include "tools/inspect/sysroot.h"

#include <fnmatch.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <system_error>

#include "tools/console/failure.h"

namespace quill::inspect {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;
constexpr std::size_t kMostIncludes = 200;
constexpr std::streamsize kLongestConfiguration = 64 << 10;

// Puts a path's parts on a stack, the first one on top.
void PushParts(const fs::path& path, std::vector<std::string>& parts) {
    const std::vector<std::string> in_order(path.begin(), path.end());
    parts.insert(parts.end(), in_order.rbegin(), in_order.rend());
}

bool BeginsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

}  // namespace

Sysroot::Sysroot(const std::string& folder) : folder_(folder) {
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        throw console::Failure(console::kExitUsage,
                               "--sysroot takes a folder with the board's files, not \"" + folder +
                                   "\"" + (error ? ": " + error.message() : ""));
    }
    ReadConfiguration("/etc/ld.so.conf");
    FindOtherLoader();
    AddFolders();
}

std::optional<std::string> Sysroot::Find(const std::string& path) const {
    std::vector<std::string> left;
    std::vector<fs::path> reached = {fs::path(folder_)};  // of each part that was gone into
    int links = 0;
    PushParts(path, left);
    while (!left.empty()) {
        const std::string part = left.back();
        left.pop_back();
        if (part.empty() || part == "/" || part == "." || part == "..") {
            // Above the root is the root.
            if (part == ".." && reached.size() > 1) {
                reached.pop_back();
            }
            continue;
        }
        const fs::path here = reached.back() / part;
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(here, error))) {
            reached.push_back(here);
            continue;
        }
        const fs::path target = fs::read_symlink(here, error);
        if (error || ++links > kMostLinks) {
            return std::nullopt;
        }
        if (target.is_absolute()) {
            reached.resize(1);
        }
        PushParts(target, left);
    }
    std::error_code error;
    const bool is_there = fs::exists(fs::symlink_status(reached.back(), error));
    return is_there ? std::optional<std::string>(reached.back().string()) : std::nullopt;
}

std::optional<std::string> Sysroot::NameOf(const std::string& file) const {
    std::error_code error;
    const std::string root = fs::canonical(folder_, error).string();
    const std::string real = fs::canonical(file, error).string();
    const std::string start = root == "/" ? root : root + "/";
    if (error || !BeginsWith(real, start)) {
        return std::nullopt;
    }
    return "/" + real.substr(start.size());
}

// In the order of the alphabet.
std::vector<std::string> Sysroot::NamesIn(const std::string& folder) const {
    std::vector<std::string> names;
    const std::optional<std::string> place = Find(folder);
    std::error_code error;
    fs::directory_iterator entry =
        place ? fs::directory_iterator(*place, error) : fs::directory_iterator();
    while (!error && entry != fs::directory_iterator()) {
        names.push_back(entry->path().filename().string());
        entry.increment(error);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The first line comes to lie on top.
void Sysroot::PushLines(const std::string& path, std::vector<Line>& lines) const {
    const std::optional<std::string> place = Find(path);
    std::error_code error;
    if (!place || !fs::is_regular_file(*place, error)) {
        return;
    }
    std::ifstream file(*place, std::ios::binary);
    std::string text(static_cast<std::size_t>(kLongestConfiguration), '\0');
    file.read(text.data(), kLongestConfiguration);
    text.resize(static_cast<std::size_t>(file.gcount()));
    std::istringstream in_order(text);
    const std::string folder = fs::path(path).parent_path().string();
    const auto first = static_cast<std::ptrdiff_t>(lines.size());
    for (std::string line; std::getline(in_order, line);) {
        lines.push_back({line, folder});
    }
    std::reverse(lines.begin() + first, lines.end());
}

// Folders in lines; "include" and a pattern name further files. A line may name its own file, so
// their number is limited.
void Sysroot::ReadConfiguration(const std::string& path) {
    std::size_t includes_left = kMostIncludes;
    std::vector<Line> lines;
    PushLines(path, lines);
    while (!lines.empty()) {
        Line line = std::move(lines.back());
        lines.pop_back();
        line.text.resize(std::min(line.text.find('#'), line.text.size()));
        std::replace_if(
            line.text.begin(), line.text.end(), [](char c) { return c == ':' || c == ','; }, ' ');
        std::istringstream parts(line.text);
        std::string word;
        parts >> word;
        if (word != "include") {
            for (; parts && word[0] == '/' && library_folders_.size() < kMostFolders;
                 parts >> word) {
                library_folders_.push_back(word);
            }
            continue;
        }
        parts >> word;
        const fs::path pattern = fs::path(line.folder) / word;
        const std::vector<std::string> names = NamesIn(pattern.parent_path().string());
        for (auto name = names.rbegin(); name != names.rend() && includes_left > 0; ++name) {
            if (fnmatch(pattern.filename().c_str(), name->c_str(), 0) == 0) {
                --includes_left;
                PushLines((pattern.parent_path() / *name).string(), lines);
            }
        }
        if (includes_left == 0) {
            return;
        }
    }
}

// Those of all machines: a file for another one than is wanted is passed over, as loaders do.
void Sysroot::AddFolders() {
    for (const char* const top : {"/lib", "/usr/lib", "/usr/local/lib"}) {
        for (const std::string& name : NamesIn(top)) {
            if (name.find("-linux-") != std::string::npos) {
                library_folders_.push_back((fs::path(top) / name).string());
            }
        }
    }
    for (const char* const folder :
         {"/lib", "/usr/lib", "/lib32", "/usr/lib32", "/libo32", "/lib64", "/usr/lib64"}) {
        library_folders_.emplace_back(folder);
    }
    if (!other_loader_.empty()) {
        library_folders_.emplace_back("/usr/local/lib");
    }
}

void Sysroot::FindOtherLoader() {
    for (const std::string& name : NamesIn("/lib")) {
        const bool is_musl = BeginsWith(name, "ld-musl-");
        if (is_musl || BeginsWith(name, "ld-uClibc") || BeginsWith(name, "ld64-uClibc")) {
            other_loader_ = "/lib/" + name;
            other_c_library_ = is_musl ? "musl" : "uClibc";
            ReadConfiguration("/etc/" + fs::path(name).stem().stem().string() + ".path");
            return;
        }
    }
}

}  // namespace quill::inspect
