#include "support/failing_new.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

std::size_t smallest_failing = kNever;
unsigned spared_count = 0;
unsigned failures_left = 0;
unsigned failure_count = 0;
long live_count = 0;

void* allocate(std::size_t size) noexcept {
    if (size >= smallest_failing && spared_count != 0) {
        --spared_count;
    } else if (size >= smallest_failing && failures_left != 0) {
        --failures_left;
        ++failure_count;
        return nullptr;
    }
    void* const block = std::malloc(size != 0 ? size : 1);
    live_count += block != nullptr ? 1 : 0;
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
    live_count -= block != nullptr ? 1 : 0;
    std::free(block);
}

}  // namespace

namespace support {

FailingNew::FailingNew(std::size_t smallest, unsigned spared, unsigned times) {
    smallest_failing = smallest;
    spared_count = spared;
    failures_left = times;
    failure_count = 0;
}

FailingNew::~FailingNew() {
    smallest_failing = kNever;
}

unsigned FailingNew::failures() const {
    return failure_count;
}

long live_blocks() {
    return live_count;
}

}  // namespace support

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
