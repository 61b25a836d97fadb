// Says in words why a file cannot be loaded into this program, before the loader is asked.
#ifndef TOOLS_HOST_ELF_CHECK_H_
#define TOOLS_HOST_ELF_CHECK_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quill::host {

// What the first bytes of an ELF file say about the programs that it fits.
struct ElfTarget {
    std::uint8_t bits_class;  // ELFCLASS32 or ELFCLASS64
    std::uint8_t byte_order;  // ELFDATA2LSB or ELFDATA2MSB
    std::uint16_t machine;    // EM_...

    bool operator==(const ElfTarget& other) const;
};

// The program that is running.
ElfTarget OwnTarget();

// The bytes of the module at `path`, the first 256 MiB of a longer one. Throws Failure when it
// cannot be read or is not a regular file. `kind` is what messages call the file.
std::string ReadModuleFile(const std::string& path, const std::string& kind = "module");

// The target of a module whose bytes begin so. Throws Failure when it is no ELF file.
ElfTarget ElfTargetOf(std::string_view start, const std::string& path,
                      const std::string& kind = "module");

// "32-bit (i386)", or, when that would not tell them apart, with the byte order.
std::string TargetName(const ElfTarget& target);

// "i386", or "machine 244" for one that has no name here.
std::string MachineName(const ElfTarget& target);

// Says of a module that is not for this program which machines the two are for.
std::string DescribeMismatch(const std::string& path, const ElfTarget& module);

// Throws Failure, with the reason in words, when the module at `path` is not for this program or
// lacks a part that the loader would map or read.
void CheckModuleFile(const std::string& path);

}  // namespace quill::host

#endif  // TOOLS_HOST_ELF_CHECK_H_
