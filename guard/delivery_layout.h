// How a delivery lies in the guard's own memory.
//
//     head | info block | head | record | head | record | ... | head | text | head | text | ...
//
// A head looks to the C library's free() like that of a small block, so that freeing what lies
// behind it comes to a write into it, which memory that is read-only does not let pass.
#pragma once

#include <cstddef>

#include "guard/text.h"
#include "quillcaption/quillcaption.h"

namespace guard {

/// Bytes that a copy of the delivery takes.
std::size_t layout_size(const WebvttDataInfo& info);

/// Copies the info block, its records and their texts; the copies point at copies.
/// @param memory aligned to 16 bytes, as large as layout_size says
/// @param seen where the host sees that memory, which may be elsewhere
/// @return the info block that the host sees
WebvttDataInfo* lay_out(const WebvttDataInfo& info, char* memory, char* seen);

/// Says which record and which field lie at an address that the host sees: "record 2 of 3, field
/// pcText". Reads nothing but `memory`.
void describe_place(const char* memory, const char* seen, const char* address, Detail& detail);

}  // namespace guard
