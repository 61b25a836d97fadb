#include "bench/stack_probe.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace bench {
namespace {

constexpr std::size_t kStackSize = 1u << 20;
constexpr unsigned char kPaint = 0xA5;
// Not painted: what the painting function itself stands on.
constexpr std::size_t kOwnFrame = 256;

struct Probe {
    const std::function<void()>& work;
    unsigned char* stack;
    std::size_t peak = 0;
};

/// Volatile, so that no memset is made of it, which would stand on what is being painted.
void paint(volatile unsigned char* begin, const volatile unsigned char* end) {
    while (begin < end) {
        *begin++ = kPaint;
    }
}

void* run_probe(void* pointer) {
    Probe& probe = *static_cast<Probe*>(pointer);
    auto* const frame = static_cast<unsigned char*>(__builtin_frame_address(0));
    std::free(std::malloc(1));  // a thread's first allocation is a long story of the C library's
    paint(probe.stack, frame - kOwnFrame);
    probe.work();
    // Here and not later: a thread's end goes deep, too.
    const unsigned char* deepest = probe.stack;
    while (deepest < frame && *deepest == kPaint) {
        ++deepest;
    }
    probe.peak = static_cast<std::size_t>(frame - deepest);
    return nullptr;
}

void check(int error, const char* what) {
    if (error != 0) {
        std::fprintf(stderr, "%s: error %d\n", what, error);
        std::exit(2);
    }
}

}  // namespace

std::size_t stack_peak_of(const std::function<void()>& work) {
    const auto free_stack = [](void* stack) { std::free(stack); };
    const std::unique_ptr<void, decltype(free_stack)> stack(std::aligned_alloc(4096, kStackSize),
                                                            free_stack);
    Probe probe{work, static_cast<unsigned char*>(stack.get())};
    pthread_attr_t attributes;
    pthread_t thread;
    check(pthread_attr_init(&attributes), "pthread_attr_init");
    check(pthread_attr_setstack(&attributes, stack.get(), kStackSize), "pthread_attr_setstack");
    check(pthread_create(&thread, &attributes, run_probe, &probe), "pthread_create");
    check(pthread_join(thread, nullptr), "pthread_join");
    pthread_attr_destroy(&attributes);
    return probe.peak;
}

}  // namespace bench
