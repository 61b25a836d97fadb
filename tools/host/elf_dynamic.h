// What an ELF file tells the loader: libraries, versions, exports.
#ifndef TOOLS_HOST_ELF_DYNAMIC_H_
#define TOOLS_HOST_ELF_DYNAMIC_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/host/elf_check.h"

namespace quill::host {

// A symbol that the file defines for others.
struct ElfExport {
    std::string name;  // as it is in the file, mangled
    unsigned kind;     // STT_...
    std::uint64_t size;
};

struct ElfDynamic {
    unsigned type;                    // ET_...
    std::vector<std::string> needed;  // libraries, in the file's order
    // The highest version asked for of each family: "GLIBCXX" is "3.4.21".
    std::map<std::string, std::string> versions;
    std::vector<ElfExport> exports;  // by name
};

// Reads a whole file's bytes. Only what a loader goes by is looked at, program headers and the
// dynamic section, so a file without section headers can be read as well. Takes time by the file's
// length, whatever is in it. Throws DamagedElf.
ElfDynamic ReadElfDynamic(std::string_view bytes, const ElfTarget& target);

// Whether a version in dotted numbers is higher than another: 3.4.21 than 3.4.9.
bool IsHigherVersion(const std::string& version, const std::string& than);

}  // namespace quill::host

#endif  // TOOLS_HOST_ELF_DYNAMIC_H_
