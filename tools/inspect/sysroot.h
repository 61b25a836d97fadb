// A board's files in a folder of this machine: finds what its loader would find.
#ifndef TOOLS_INSPECT_SYSROOT_H_
#define TOOLS_INSPECT_SYSROOT_H_

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quill::inspect {

// All paths that it is given and that it tells are the board's, from "/".
class Sysroot {
  public:
    // More folders than this are no list of library folders: the rest is passed over.
    static constexpr std::size_t kMostFolders = 500;

    // Throws Failure when the folder is none. Reads the loader's configuration.
    explicit Sysroot(const std::string& folder);

    const std::string& folder() const { return folder_; }

    // Where a file of the board lies on this machine, with links followed as the board would, so
    // that they cannot lead out of the folder; nothing when there is no such file.
    std::optional<std::string> Find(const std::string& path) const;

    // The board's name of a file of this machine; nothing when that lies elsewhere.
    std::optional<std::string> NameOf(const std::string& file) const;

    // The folders where the loader looks for libraries when a file names none.
    const std::vector<std::string>& library_folders() const { return library_folders_; }

    // The path of a loader that is not the one of glibc, and the name of its C library; empty when
    // there is none.
    const std::string& other_loader() const { return other_loader_; }
    const std::string& other_c_library() const { return other_c_library_; }

  private:
    std::vector<std::string> NamesIn(const std::string& folder) const;
    // A line of the loader's configuration, and the folder of its file.
    struct Line {
        std::string text;
        std::string folder;
    };
    void PushLines(const std::string& path, std::vector<Line>& lines) const;
    void ReadConfiguration(const std::string& path);
    void AddFolders();
    void FindOtherLoader();

    std::string folder_;
    std::vector<std::string> library_folders_;
    std::string other_loader_;
    std::string other_c_library_;
};

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_SYSROOT_H_
