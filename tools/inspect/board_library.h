// Finds a library where a board's loader would find it.
#ifndef TOOLS_INSPECT_BOARD_LIBRARY_H_
#define TOOLS_INSPECT_BOARD_LIBRARY_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tools/host/elf_check.h"
#include "tools/host/elf_dynamic.h"
#include "tools/inspect/processor.h"
#include "tools/inspect/sysroot.h"

namespace quill::inspect {

// A library of the board, or the file that is asked about.
struct BoardLibrary {
    // The highest version of the family that it offers; empty when there is none.
    std::string Highest(const std::string& family) const;

    std::string name;    // by which it is asked for
    std::string path;    // on the board; of the file, empty when it lies elsewhere
    std::string called;  // in messages
    const BoardLibrary* asked_by = nullptr;
    host::ElfDynamic dynamic;
    std::map<std::string, std::string> highest;  // version that it offers, by family
    Processor processor;
};

class LibraryFinder {
  public:
    // Libraries for another machine than the target are passed over, as loaders do. Both must
    // outlive the finder.
    LibraryFinder(const Sysroot& root, const host::ElfTarget& target)
        : root_(root), target_(target) {}

    // The library that is taken for the name when `asker` needs it; null, with the reason in
    // `trouble`, when there is none.
    std::unique_ptr<BoardLibrary> Find(const std::string& name, const BoardLibrary& asker,
                                       std::string& trouble) const;

  private:
    std::unique_ptr<BoardLibrary> Open(const std::string& path) const;
    std::vector<std::string> PathsOf(const std::string& name, const BoardLibrary& asker) const;
    std::vector<std::string> FoldersFor(const BoardLibrary& asker) const;
    void AddRunPath(const BoardLibrary& library, std::vector<std::string>& folders) const;

    const Sysroot& root_;
    const host::ElfTarget& target_;
};

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_BOARD_LIBRARY_H_
