#include "tools/console/track_list.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <system_error>
#include <utility>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"
#include "tools/console/text.h"

namespace quill::console {
namespace {

namespace fs = std::filesystem;

bool HasTrackName(const fs::path& path) {
    const std::string extension = InSmallLetters(path.extension().string());
    return extension == ".vtt" || extension == ".webvtt";
}

// A pipe would be waited for. A link that leads nowhere is left to whoever opens it, which tells
// why that fails.
bool MayBeRead(const fs::directory_entry& entry) {
    std::error_code failed;
    return entry.is_regular_file(failed) || failed || !entry.exists(failed);
}

}  // namespace

void AddTrackArguments(CommandLine& line, TrackArguments& arguments, const std::string& what) {
    line.AddOptional("TRACK", arguments.names,
                     what +
                         "; - reads standard input,\n"
                         "a folder stands for every *.vtt and *.webvtt below it");
    line.AddOption("--files-from", "FILE", arguments.list,
                   "Take the names of more tracks from this file, one a line;\n"
                   "- takes them from standard input");
}

TrackList::TrackList(TrackArguments arguments) : arguments_(std::move(arguments)) {}

std::optional<std::string> TrackList::Next() {
    for (;;) {
        if (std::optional<std::string> track = NextInFolder()) {
            return track;
        }
        const std::string left = std::exchange(top_, "");
        if (!left.empty() && !found_) {
            throw Failure(kExitUsage, left + ": no *.vtt and no *.webvtt below this folder");
        }
        std::optional<std::string> name = NextGiven();
        std::error_code ignored;  // what is no folder is opened as a file, which tells why it fails
        if (!name || *name == "-" || !fs::is_directory(*name, ignored)) {
            return name;
        }
        top_ = *name;
        found_ = false;
        Enter(top_);
    }
}

std::optional<std::string> TrackList::NextGiven() {
    if (given_ < arguments_.names.size()) {
        return arguments_.names[given_++];
    }
    if (list_ == nullptr) {
        const std::string list = std::exchange(arguments_.list, "");
        if (list.empty()) {
            return std::nullopt;
        }
        if (list == "-") {
            list_ = &std::cin;
        } else {
            list_file_.open(list, std::ios::binary);
            if (!list_file_) {
                throw Failure(kExitUsage, list + ": " + ErrorText(errno));
            }
            list_ = &list_file_;
        }
    }
    std::string name;
    while (std::getline(*list_, name)) {
        if (!name.empty()) {
            return name;
        }
    }
    return std::nullopt;
}

std::optional<std::string> TrackList::NextInFolder() {
    while (!folders_.empty()) {
        if (folders_.back().empty()) {
            folders_.pop_back();
            continue;
        }
        const Entry entry = std::move(folders_.back().back());
        folders_.back().pop_back();
        if (!entry.is_folder) {
            found_ = true;
            return entry.path.string();
        }
        Enter(entry.path);
    }
    return std::nullopt;
}

void TrackList::Enter(const fs::path& folder) {
    std::vector<Entry> entries;
    try {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            const bool is_folder = fs::is_directory(entry.symlink_status());
            if (is_folder || (HasTrackName(entry.path()) && MayBeRead(entry))) {
                entries.push_back({entry.path(), is_folder});
            }
        }
    } catch (const fs::filesystem_error& error) {
        found_ = true;  // or something else would be said of it as well
        throw Failure(kExitUsage, folder.string() + ": " + error.code().message());
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.path.native() > b.path.native(); });
    folders_.push_back(std::move(entries));
}

}  // namespace quill::console
