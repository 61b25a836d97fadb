#include "tools/inspect/board_library.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <sstream>

#include "tools/console/failure.h"
#include "tools/host/elf_reader.h"

namespace quill::inspect {
namespace {

// The parts of musl itself, which it takes itself for.
bool IsPartOfMusl(const std::string& name) {
    constexpr std::array<const char*, 7> kParts = {"libc.",  "libm.",    "libdl.",  "libpthread.",
                                                   "librt.", "libutil.", "libxnet."};
    return std::any_of(kParts.begin(), kParts.end(), [&name](const std::string& part) {
        return name.compare(0, part.size(), part) == 0;
    });
}

}  // namespace

std::string BoardLibrary::Highest(const std::string& family) const {
    const auto found = highest.find(family);
    return found != highest.end() ? found->second : "";
}

// What a file names itself, with $ORIGIN for its own folder.
void LibraryFinder::AddRunPath(const BoardLibrary& library,
                               std::vector<std::string>& folders) const {
    std::istringstream path(library.dynamic.run_path);
    std::string folder;
    while (folders.size() < Sysroot::kMostFolders && std::getline(path, folder, ':')) {
        for (const std::string origin : {"${ORIGIN}", "$ORIGIN"}) {
            if (!library.path.empty() && folder.compare(0, origin.size(), origin) == 0) {
                folder.replace(0, origin.size(),
                               std::filesystem::path(library.path).parent_path().string());
            }
        }
        if (!folder.empty() && folder[0] == '/') {
            folders.push_back(folder);
        }
    }
}

std::vector<std::string> LibraryFinder::FoldersFor(const BoardLibrary& asker) const {
    std::vector<std::string> folders;
    const bool is_alone = !asker.dynamic.run_path.empty() && !asker.dynamic.run_path_is_inherited;
    for (const BoardLibrary* one = is_alone ? nullptr : &asker; one != nullptr;
         one = one->asked_by) {
        if (one->dynamic.run_path_is_inherited) {
            AddRunPath(*one, folders);
        }
    }
    if (is_alone) {
        AddRunPath(asker, folders);
    }
    folders.insert(folders.end(), root_.library_folders().begin(), root_.library_folders().end());
    return folders;
}

// Null when there is no such file, or it is for another machine. Throws Failure and DamagedElf.
std::unique_ptr<BoardLibrary> LibraryFinder::Open(const std::string& path) const {
    const std::optional<std::string> place = root_.Find(path);
    if (!place) {
        return nullptr;
    }
    const std::string bytes = host::ReadModuleFile(*place, "library");
    const host::ElfTarget target = host::ElfTargetOf(bytes, *place, "library");
    if (!(target == target_)) {
        return nullptr;
    }
    auto library = std::make_unique<BoardLibrary>();
    library->path = path;
    library->called = path;
    library->dynamic = host::ReadElfDynamic(bytes, target);
    for (const std::string& name : library->dynamic.version_offers) {
        host::NoteVersion(name, library->highest);
    }
    library->processor = ReadProcessor(bytes, target);
    return library;
}

std::vector<std::string> LibraryFinder::PathsOf(const std::string& name,
                                                const BoardLibrary& asker) const {
    std::vector<std::string> paths;
    if (name.find('/') != std::string::npos) {
        paths.push_back(name);
    } else {
        for (const std::string& folder : FoldersFor(asker)) {
            paths.push_back((std::filesystem::path(folder) / name).string());
        }
        if (root_.other_c_library() == "musl" && IsPartOfMusl(name)) {
            paths.push_back(root_.other_loader());
        }
    }
    return paths;
}

std::unique_ptr<BoardLibrary> LibraryFinder::Find(const std::string& name,
                                                  const BoardLibrary& asker,
                                                  std::string& trouble) const {
    for (const std::string& path : PathsOf(name, asker)) {
        try {
            std::unique_ptr<BoardLibrary> library = Open(path);
            if (library != nullptr) {
                return library;
            }
        } catch (const console::Failure& failure) {
            trouble = "library: " + std::string(failure.what());
            return nullptr;
        } catch (const host::DamagedElf& error) {
            trouble = "library: " + path + " is damaged: " + error.what() +
                      "; copy it to the board again";
            return nullptr;
        }
    }
    trouble = "library: " + name + ", which " + asker.called + " needs, is not in " +
              root_.folder() +
              " for this machine: add it to the board's image, or build with the board's own "
              "toolchain";
    return nullptr;
}

}  // namespace quill::inspect
