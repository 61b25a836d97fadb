// What keeps pieces of one block of memory apart in builds with the address sanitizer.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define WEBVTT_RED_ZONES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define WEBVTT_RED_ZONES
#endif
#endif

#ifdef WEBVTT_RED_ZONES
#include <sanitizer/asan_interface.h>
#endif

namespace webvtt {

#ifdef WEBVTT_RED_ZONES
/// Left free behind each piece. No piece holds it, so whoever writes there is reported.
inline constexpr std::size_t kRedZone = 16;

inline void forbid_memory(const void* begin, std::size_t size) {
    __asan_poison_memory_region(begin, size);
}

/// Returns what it is given, null as well.
inline void* allow_memory(void* begin, std::size_t size) {
    if (begin != nullptr) {
        __asan_unpoison_memory_region(begin, size);
    }
    return begin;
}
#else
inline constexpr std::size_t kRedZone = 0;

inline void forbid_memory(const void* /*begin*/, std::size_t /*size*/) {}

inline void* allow_memory(void* begin, std::size_t /*size*/) {
    return begin;
}
#endif

}  // namespace webvtt
