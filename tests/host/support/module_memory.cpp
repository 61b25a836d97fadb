#include "host/support/module_memory.h"

#include <cstdlib>
#include <new>

namespace host {
namespace {

ModuleMemory* current = nullptr;

}  // namespace

ModuleMemory::Use::Use(ModuleMemory* memory) : m_before(current) {
    current = memory;
}
ModuleMemory::Use::Use(ModuleMemory& memory) : Use(&memory) {}
ModuleMemory::Use::~Use() {
    current = m_before;
}
ModuleMemory::Pause::Pause() : Use(nullptr) {}

void ModuleMemory::plan(unsigned first, unsigned last, std::size_t smallest) {
    m_first = first;
    m_last = last;
    m_smallest = smallest;
    m_allocations = 0;
    m_failures = 0;
}

bool ModuleMemory::fails(std::size_t size) {
    if (size < m_smallest) {
        return false;
    }
    ++m_allocations;
    const bool failing = m_allocations >= m_first && m_allocations <= m_last;
    m_failures += failing ? 1 : 0;
    return failing;
}

void* ModuleMemory::allocate(std::size_t size) noexcept {
    if (current != nullptr && current->fails(size)) {
        return nullptr;
    }
    void* const block = std::malloc(size != 0 ? size : 1);
    if (current != nullptr && block != nullptr) {
        ++current->m_live_blocks;
    }
    return block;
}

void ModuleMemory::release(void* block) noexcept {
    if (current != nullptr && block != nullptr) {
        --current->m_live_blocks;
    }
    std::free(block);
}

}  // namespace host

namespace {

void* allocate_or_throw(std::size_t size) {
    void* const block = host::ModuleMemory::allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate_or_throw(size);
}
void* operator new[](std::size_t size) {
    return allocate_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return host::ModuleMemory::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return host::ModuleMemory::allocate(size);
}
void operator delete(void* block) noexcept {
    host::ModuleMemory::release(block);
}
void operator delete[](void* block) noexcept {
    host::ModuleMemory::release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    host::ModuleMemory::release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    host::ModuleMemory::release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    host::ModuleMemory::release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    host::ModuleMemory::release(block);
}
