// Memory that runs out when a test says so.
//
// Linking failing_new.cpp replaces the program's operator new. Code with an operator new of its
// own, such as a module that was loaded, is not affected.
#pragma once

#include <cstddef>

namespace support {

/// While it lives, allocations of at least the given size fail: after the first `spared` of them,
/// `times` in number. One at a time; not for use across threads.
class FailingNew {
  public:
    explicit FailingNew(std::size_t smallest, unsigned spared = 0, unsigned times = ~0u);
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
    ~FailingNew();

    /// How many allocations have failed since construction.
    unsigned failures() const;
};

/// Blocks that are allocated and not yet freed.
long live_blocks();

}  // namespace support
