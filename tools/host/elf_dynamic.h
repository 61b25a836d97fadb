// What an ELF file tells the loader: libraries, versions, symbols, and how it is to be mapped.
#ifndef TOOLS_HOST_ELF_DYNAMIC_H_
#define TOOLS_HOST_ELF_DYNAMIC_H_

#include <cstdint>
#include <map>
#include <optional>
#include <set>
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

// The versions of one library's interface that the file asks for.
struct ElfVersionNeeds {
    struct Version {
        std::string name;  // "GLIBC_2.4"
        bool is_weak;      // the file can do without
    };
    std::string library;
    std::vector<Version> versions;
};

enum class ElfStack { kUnsaid, kPlain, kExecutable };

struct ElfDynamic {
    unsigned type = 0;                 // ET_...
    bool is_program = false;           // is started, and cannot be loaded into another program
    bool has_dynamic_section = false;  // else no loader takes it
    std::string interpreter;           // the loader that starts a program; empty when there is none
    std::uint64_t memory = 0;          // bytes of addresses that it takes up when loaded
    ElfStack stack = ElfStack::kUnsaid;
    bool relocates_code = false;
    bool has_gnu_hash = false;  // tables by which its symbols are found
    bool has_hash = false;
    bool has_packed_relocations = false;
    bool refuses_dlopen = false;
    std::uint64_t thread_local_bytes = 0;
    std::string own_name;                // by which others ask for it, if it says
    std::vector<std::string> needed;     // libraries, in the file's order
    std::string run_path;                // folders to look for them in, with colons between
    bool run_path_is_inherited = false;  // by the libraries that it needs
    // The highest version asked for of each family: "GLIBCXX" is "3.4.21".
    std::map<std::string, std::string> versions;
    std::vector<ElfVersionNeeds> version_needs;
    std::set<std::string> version_offers;
    std::vector<ElfExport> exports;    // by name
    std::vector<std::string> imports;  // names that some library must define
};

// Reads a whole file's bytes. Only what a loader goes by is looked at, program headers and the
// dynamic section, so a file without section headers can be read as well. Takes time by the file's
// length, whatever is in it. Throws DamagedElf.
ElfDynamic ReadElfDynamic(std::string_view bytes, const ElfTarget& target);

struct ElfVersion {
    std::string family;  // "GLIBCXX"
    std::string number;  // "3.4.21"
};

// "GLIBCXX_3.4.21" in two. A name without a number at its end is its library's own: nothing.
std::optional<ElfVersion> SplitVersion(const std::string& name);

// Whether a version in dotted numbers is higher than another: 3.4.21 than 3.4.9.
bool IsHigherVersion(const std::string& version, const std::string& than);

// Keeps the highest number of each family, and returns the version's. A name without a number is a
// family of its own.
std::string NoteVersion(const std::string& name, std::map<std::string, std::string>& highest);

}  // namespace quill::host

#endif  // TOOLS_HOST_ELF_DYNAMIC_H_
