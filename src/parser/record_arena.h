// Memory for result records.
#pragma once

#include <cstddef>

#include "base/red_zone.h"

namespace webvtt {

/// Hands out memory that is given back all at once: the records of one delivery live and die
/// together. A record so costs a few instructions instead of the allocator's few hundred, and
/// records that are never delivered are freed with the parser. Under the address sanitizer what is
/// free, and what lies between two pieces, is nobody's.
class RecordArena {
  public:
    RecordArena() = default;
    RecordArena(const RecordArena&) = delete;
    RecordArena& operator=(const RecordArena&) = delete;
    ~RecordArena();

    /// Memory aligned to 8 bytes, valid until vFreeAll; null when memory ran out.
    void* pvTake(std::size_t uSize);

    /// Takes everything back. The first slab is kept for the next delivery.
    void vFreeAll();

  private:
    struct Slab;

    // A few dozen cues. What is larger than a quarter of a slab gets one of its own.
    static constexpr std::size_t kSlabSize = 4096;
    static constexpr std::size_t kAlignment = 8;

    void* pvTakeFromNewSlab(std::size_t uSize);
    bool fgIsFreeUpToTheEnd() const;

    char* m_free = nullptr;  // in the newest slab of ordinary size, up to its end
    std::size_t m_free_size = 0;
    Slab* m_slabs = nullptr;  // newest first
};

inline void* RecordArena::pvTake(std::size_t uSize) {
    const std::size_t size = ((uSize + kAlignment - 1) & ~(kAlignment - 1)) + kRedZone;
    if (size > m_free_size) {
        return allow_memory(pvTakeFromNewSlab(size), uSize);
    }
    char* const taken = m_free;
    m_free += size;
    m_free_size -= size;
    return allow_memory(taken, uSize);
}

}  // namespace webvtt
