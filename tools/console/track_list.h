// The tracks that a command was told to work on: files, folders of them, lists of names.
#ifndef TOOLS_CONSOLE_TRACK_LIST_H_
#define TOOLS_CONSOLE_TRACK_LIST_H_

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "tools/console/arguments.h"

namespace quill::console {

struct TrackArguments {
    std::vector<std::string> names;  // of files and folders; "-" is standard input
    std::string list;                // a file with one more name on each line, or "-"; or empty

    bool AreGiven() const { return !names.empty() || !list.empty(); }
};

// Adds TRACK and --files-from; `what` begins the help of TRACK.
void AddTrackArguments(CommandLine& line, TrackArguments& arguments, const std::string& what);

// Hands out one name after the other: those of the command line, then those of the list; for a
// folder the tracks below it, in the order of their names. Links to folders are not followed below
// a folder. No more names are held at a time than those in the folders that the walk is in.
class TrackList {
  public:
    explicit TrackList(TrackArguments arguments);

    // Nothing behind the last one. Throws Failure for a folder that cannot be read or has no track
    // below it, and for a list that cannot be read; what comes behind those can still be had.
    std::optional<std::string> Next();

  private:
    struct Entry {
        std::filesystem::path path;
        bool is_folder;
    };

    std::optional<std::string> NextGiven();
    std::optional<std::string> NextInFolder();
    void Enter(const std::filesystem::path& folder);

    TrackArguments arguments_;
    std::size_t given_ = 0;  // how many of the names were handed out
    std::ifstream list_file_;
    std::istream* list_ = nullptr;             // while it is read
    std::vector<std::vector<Entry>> folders_;  // that the walk is in; what comes next stands last
    std::string top_;                          // the folder that was given
    bool found_ = false;                       // something below it
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_TRACK_LIST_H_
