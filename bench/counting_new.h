// What a program has on the heap.
//
// Linking counting_new.cpp replaces operator new. A module that is loaded uses the program's
// operators too, because the program exports them.
#pragma once

#include <cstddef>

namespace bench {

/// Blocks count with what they take from the heap, the allocator's own word included.
struct HeapUse {
    std::size_t live_bytes = 0;
    std::size_t live_blocks = 0;
    std::size_t peak_bytes = 0;   ///< the most that was live at one time
    std::size_t allocations = 0;  ///< since the program started
};

HeapUse heap_use();

/// Lets the peak start over from what is live now.
void restart_heap_peak();

}  // namespace bench
