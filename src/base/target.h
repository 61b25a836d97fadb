// What the module asks of its target, checked at compile time wherever this is included.
#pragma once

#include <climits>
#include <cstdint>
#include <limits>

#if UINTPTR_MAX != UINT32_MAX || ULONG_MAX != UINT32_MAX || UINT_MAX != UINT32_MAX
#error "quillcaption supports 32-bit (ILP32) targets only: compile for one, for example with -m32"
#endif

// x87 registers keep excess precision, so a cue's time would depend on what the compiler spills.
#if defined(__i386__) && !defined(__SSE2_MATH__)
#error "quillcaption computes in SSE doubles on i386: compile with -msse2 -mfpmath=sse"
#endif

// Divisions by zero are meant to give infinity or NaN (see parse_double).
static_assert(std::numeric_limits<double>::is_iec559, "IEEE 754 doubles are needed");
