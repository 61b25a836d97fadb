// The tables in which compilers for ARM, MIPS and PowerPC say what they compiled for.
#ifndef TOOLS_INSPECT_ATTRIBUTES_H_
#define TOOLS_INSPECT_ATTRIBUTES_H_

#include <cstdint>
#include <map>

#include "tools/host/elf_reader.h"

namespace quill::inspect {

// The numbers by their tags.
using Attributes = std::map<std::uint64_t, std::uint64_t>;

// Of the section's part that the vendor "aeabi" or "gnu" defines for the whole file; empty when
// there is none. Throws DamagedElf.
Attributes ReadAttributes(const host::ElfReader& file, std::uint64_t start, std::uint64_t size,
                          const char* vendor);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_ATTRIBUTES_H_
