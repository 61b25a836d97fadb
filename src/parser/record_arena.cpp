#include "parser/record_arena.h"

#include <cassert>
#include <new>

namespace webvtt {

struct alignas(8) RecordArena::Slab {
    Slab* next;
    bool ordinary;  // kSlabSize large
};

/// Whether what is free is the rest of the newest slab of ordinary size.
inline bool RecordArena::fgIsFreeUpToTheEnd() const {
    const Slab* slab = m_slabs;
    while (slab != nullptr && !slab->ordinary) {
        slab = slab->next;
    }
    return slab == nullptr
               ? m_free_size == 0
               : m_free + m_free_size == reinterpret_cast<const char*>(slab) + kSlabSize;
}

RecordArena::~RecordArena() {
    vFreeAll();
    ::operator delete(m_slabs);
}

void* RecordArena::pvTakeFromNewSlab(std::size_t uSize) {
    assert(fgIsFreeUpToTheEnd());
    const bool ordinary = uSize <= kSlabSize / 4;
    const std::size_t space = ordinary ? kSlabSize - sizeof(Slab) : uSize;
    void* const memory = ::operator new(sizeof(Slab) + space, std::nothrow);
    if (memory == nullptr) {
        return nullptr;
    }
    Slab* const slab = new (memory) Slab{m_slabs, ordinary};
    m_slabs = slab;
    char* const begin = reinterpret_cast<char*>(slab + 1);
    forbid_memory(begin, space);
    if (ordinary) {
        m_free = begin + uSize;
        m_free_size = space - uSize;
    }
    return begin;
}

void RecordArena::vFreeAll() {
    assert(fgIsFreeUpToTheEnd());
    Slab* kept = nullptr;
    while (m_slabs != nullptr) {
        Slab* const slab = m_slabs;
        m_slabs = slab->next;
        if (kept == nullptr && slab->ordinary) {
            kept = slab;
        } else {
            ::operator delete(slab);
        }
    }
    m_slabs = kept;
    m_free = nullptr;
    m_free_size = 0;
    if (kept != nullptr) {
        kept->next = nullptr;
        m_free = reinterpret_cast<char*>(kept + 1);
        m_free_size = kSlabSize - sizeof(Slab);
        forbid_memory(m_free, m_free_size);
    }
    assert(fgIsFreeUpToTheEnd());
}

}  // namespace webvtt
