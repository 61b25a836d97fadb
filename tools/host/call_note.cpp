#include "tools/host/call_note.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::host {
namespace {

CallNote unshared;
CallNote* own = &unshared;

CallNote* MapShared() {
    void* const memory =
        mmap(nullptr, sizeof(CallNote), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw console::Failure(console::kExitUsage,
                               "no memory to share with a process: " + console::ErrorText(errno));
    }
    return new (memory) CallNote();
}

}  // namespace

void NotedText::Set(std::string_view text) {
    const std::size_t size = std::min(text.size(), bytes_.size() - 1);
    std::copy_n(text.begin(), size, bytes_.begin());
    bytes_[size] = '\0';
}

CallNote& CallNote::Own() {
    return *own;
}

SharedNote::SharedNote() : note_(MapShared()) {}

void SharedNote::BecomeOwn() const {
    own = note_.get();
}

void SharedNote::Unmap::operator()(CallNote* note) const {
    munmap(note, sizeof(CallNote));
}

bool CallWatch::HasHung() {
    const std::uint32_t sequence = note_.sequence.load(std::memory_order_relaxed);
    if (!note_.is_in_call() || sequence != sequence_) {
        sequence_ = sequence;
        waited_ = std::chrono::seconds(0);
        return false;
    }
    ++waited_;
    return waited_ >= limit_ + std::chrono::seconds(note_.size.load() >> 20);
}

}  // namespace quill::host
