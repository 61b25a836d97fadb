// Whether a board's loader would find all that a file needs.
#ifndef TOOLS_INSPECT_BOARD_CHECK_H_
#define TOOLS_INSPECT_BOARD_CHECK_H_

#include <string>

#include "tools/console/json.h"
#include "tools/host/elf_check.h"
#include "tools/host/elf_dynamic.h"
#include "tools/inspect/processor.h"

namespace quill::inspect {

// The file that is asked about.
struct BoardFile {
    std::string path;
    host::ElfTarget target;
    host::ElfDynamic dynamic;
    Processor processor;
};

// What the board whose files are in `folder` has for the file:
//     "sysroot"   {"folder", "c_library", "libraries", "versions"}: of each library that the file
//                 needs, itself or by another, {"name", "path", "needed_by"}; of each family of
//                 versions that it asks a library for {"library", "asks", "offers", "fits"}
//     "problems"  a list of lines, of which each keeps the file from being loaded
//     "notes"     a list of lines that are good to know
// What is not there is null. Throws Failure when the folder is none.
console::Json CheckBoard(const BoardFile& file, const std::string& folder);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_BOARD_CHECK_H_
