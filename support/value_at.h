// Values read by numeric offset.
//
// A second witness beside the headers: a mistake in a struct that the module and its host share
// would go unseen if the host read through that struct as well.
#pragma once

#include <cstddef>
#include <cstring>

namespace support {

/// A value at a byte offset of a record.
template <typename Value>
Value value_at(const void* record, std::size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof(value));
    return value;
}

}  // namespace support
