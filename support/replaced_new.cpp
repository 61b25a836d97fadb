#include "support/memory.h"

#include <new>

using support::Memory;

void* operator new(std::size_t size) {
    void* const block = Memory::allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Memory::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Memory::allocate(size);
}
void operator delete(void* block) noexcept {
    Memory::release(block);
}
void operator delete[](void* block) noexcept {
    Memory::release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Memory::release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Memory::release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    Memory::release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Memory::release(block);
}
