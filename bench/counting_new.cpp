#include "bench/counting_new.h"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

bench::HeapUse use;

std::size_t size_on_heap(void* block) {
    return malloc_usable_size(block) + sizeof(std::size_t);
}

void* allocate(std::size_t size) noexcept {
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block != nullptr) {
        use.live_bytes += size_on_heap(block);
        ++use.live_blocks;
        ++use.allocations;
        if (use.live_bytes > use.peak_bytes) {
            use.peak_bytes = use.live_bytes;
        }
    }
    return block;
}

void* allocate_or_throw(std::size_t size) {
    void* const block = allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void release(void* block) noexcept {
    if (block != nullptr) {
        use.live_bytes -= size_on_heap(block);
        --use.live_blocks;
        std::free(block);
    }
}

}  // namespace

namespace bench {

HeapUse heap_use() {
    return use;
}

void restart_heap_peak() {
    use.peak_bytes = use.live_bytes;
}

}  // namespace bench

void* operator new(std::size_t size) {
    return allocate_or_throw(size);
}
void* operator new[](std::size_t size) {
    return allocate_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}
