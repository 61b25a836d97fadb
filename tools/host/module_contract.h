// What every build of the module exports, as hosts rely on it.
#ifndef TOOLS_HOST_MODULE_CONTRACT_H_
#define TOOLS_HOST_MODULE_CONTRACT_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace quill::host {

// A slot of the method table and the exported function that it points at.
struct TableSlot {
    const char* field;   // its name in the public header
    const char* symbol;  // mangled
};

extern const std::array<TableSlot, 6> kTableSlots;

// An exported data object.
struct DataExport {
    const char* symbol;
    std::size_t size;  // in bytes
};

extern const std::array<DataExport, 2> kDataExports;

constexpr std::uint32_t kDescriptorWord = 1;
constexpr char kDescriptorName[] = "quillcaption.so";
constexpr std::size_t kDescriptorSize = 144;
constexpr std::size_t kDescriptorTail = 12;  // the offset of its zero bytes
constexpr std::size_t kTableSize = 24;
constexpr std::size_t kSlotSize = 4;

}  // namespace quill::host

#endif  // TOOLS_HOST_MODULE_CONTRACT_H_
