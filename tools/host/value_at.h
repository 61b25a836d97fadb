// Reads records of the module without the help of their declarations.
#ifndef TOOLS_HOST_VALUE_AT_H_
#define TOOLS_HOST_VALUE_AT_H_

#include <cstddef>
#include <cstring>

namespace quill::host {

// A value at a byte offset of a record.
template <typename Value>
Value ValueAt(const void* record, std::size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof(value));
    return value;
}

}  // namespace quill::host

#endif  // TOOLS_HOST_VALUE_AT_H_
