// Memory for result records.
#pragma once

#include <cstddef>

namespace webvtt {

/// Hands out memory that is given back all at once: the records of one delivery live and die
/// together. A record so costs a few instructions instead of the allocator's few hundred, and
/// records that are never delivered are freed with the parser.
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

    char* m_free = nullptr;  // in the newest slab of ordinary size
    std::size_t m_free_size = 0;
    Slab* m_slabs = nullptr;  // newest first
};

inline void* RecordArena::pvTake(std::size_t uSize) {
    uSize = (uSize + kAlignment - 1) & ~(kAlignment - 1);
    if (uSize > m_free_size) {
        return pvTakeFromNewSlab(uSize);
    }
    char* const taken = m_free;
    m_free += uSize;
    m_free_size -= uSize;
    return taken;
}

}  // namespace webvtt
