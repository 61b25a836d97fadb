#include "parser/record_arena.h"

#include <new>

namespace webvtt {

struct alignas(8) RecordArena::Slab {
    Slab* next;
    bool ordinary;  // kSlabSize large
};

RecordArena::~RecordArena() {
    vFreeAll();
    ::operator delete(m_slabs);
}

void* RecordArena::pvTakeFromNewSlab(std::size_t uSize) {
    const bool ordinary = uSize <= kSlabSize / 4;
    const std::size_t space = ordinary ? kSlabSize - sizeof(Slab) : uSize;
    void* const memory = ::operator new(sizeof(Slab) + space, std::nothrow);
    if (memory == nullptr) {
        return nullptr;
    }
    Slab* const slab = new (memory) Slab{m_slabs, ordinary};
    m_slabs = slab;
    char* const begin = reinterpret_cast<char*>(slab + 1);
    if (ordinary) {
        m_free = begin + uSize;
        m_free_size = space - uSize;
    }
    return begin;
}

void RecordArena::vFreeAll() {
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
    }
}

}  // namespace webvtt
