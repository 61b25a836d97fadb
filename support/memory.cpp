#include <malloc.h>

#include <algorithm>
#include <cstdlib>

#include "support/memory.h"

namespace support {
namespace {

std::size_t size_on_heap(void* block) {
    return malloc_usable_size(block) + sizeof(std::size_t);
}

}  // namespace

// Constant-initialised both: operator new is called before main.
Memory Memory::s_program;
thread_local Memory* Memory::s_current = &Memory::s_program;

void Memory::fail(unsigned first, unsigned last, std::size_t smallest) {
    m_first = first;
    m_last = last;
    m_smallest = smallest;
    m_allocations = 0;
    m_failures = 0;
}

bool Memory::fails(std::size_t size) {
    if (size < m_smallest) {
        return false;
    }
    ++m_allocations;
    const bool failing = m_allocations >= m_first && m_allocations <= m_last;
    m_failures += failing ? 1 : 0;
    return failing;
}

void* Memory::allocate(std::size_t size) noexcept {
    if (s_current->fails(size)) {
        return nullptr;
    }
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block != nullptr) {
        ++s_current->m_live_blocks;
        s_current->m_live_bytes += size_on_heap(block);
        s_current->m_peak_bytes = std::max(s_current->m_peak_bytes, s_current->m_live_bytes);
    }
    return block;
}

void Memory::release(void* block) noexcept {
    if (block != nullptr) {
        --s_current->m_live_blocks;
        s_current->m_live_bytes -= size_on_heap(block);
        std::free(block);
    }
}

FailingNew::FailingNew(std::size_t smallest, unsigned spared, unsigned times) {
    const unsigned last = times < Memory::kForEver - spared ? spared + times : Memory::kForEver;
    Memory::of_program().fail(spared + 1, last, smallest);
}

}  // namespace support
