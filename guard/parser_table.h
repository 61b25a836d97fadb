// The parsers that the host has, and the handles that it had.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <memory>
#include <new>

#include "guard/block_tracker.h"
#include "quillcaption/quillcaption.h"

namespace guard {

class TrackHider;

/// For what lies in memory that is not the host's operator new, and needs no destructor.
struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

/// What the guard keeps of a parser.
struct Parser {
    unsigned handle = 0;       ///< the host's
    unsigned inner = 0;        ///< the module's
    unsigned long number = 0;  ///< counts the parsers from 1

    WebvttEventNotify notify = nullptr;  ///< the host's callback
    void* tag = nullptr;

    bool is_begun = false;     ///< a chunk was fed
    bool is_rejected = false;  ///< at its first line
    bool is_in_header = true;
    bool was_taken = false;
    bool has_cues = false;       ///< some were completed in its life
    bool has_fed_since = false;  ///< since results were last taken
    bool has_video_time = false;
    unsigned long video_time = 0;
    BlockTracker blocks;
    std::unique_ptr<TrackHider, Freed> hider;  ///< when what is recorded is hidden

    unsigned calls = 0;        ///< in progress
    bool is_released = false;  ///< by the host; the module's is when no call is in progress
    std::uint32_t told = 0;    ///< a bit for each mistake that was told of this parser
};

/// Memory that is not the host's operator new, which may count or fail for reasons of the host's.
template <typename T>
struct MallocAllocator {
    using value_type = T;
    MallocAllocator() = default;
    template <typename Other>
    MallocAllocator(const MallocAllocator<Other>& /*other*/) {}
    T* allocate(std::size_t count) {
        void* const memory = std::malloc(count * sizeof(T));
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t /*count*/) { std::free(memory); }
    bool operator==(const MallocAllocator& /*other*/) const { return true; }
    bool operator!=(const MallocAllocator& /*other*/) const { return false; }
};

/// A handle whose parser is gone.
struct ReleasedHandle {
    unsigned handle;
    unsigned inner;
    unsigned long parser;
    unsigned long call;  ///< that released it
};

/// The host gets handles of the guard's own. None is given twice, so that one which outlived its
/// parser can be told from one that is live.
class ParserTable {
  public:
    using List = std::list<Parser, MallocAllocator<Parser>>;

    /// Null when memory ran out.
    Parser* add(unsigned inner);
    void remove(Parser& parser, unsigned long call);

    /// Null for a handle that is not live.
    Parser* find(unsigned handle);
    /// The live parser that the module knows by this handle.
    const Parser* find_inner(unsigned inner) const;
    /// Whether some parser had this handle, however long ago.
    bool was_given(unsigned handle) const;
    /// The last of those that had; null when that is too long ago.
    const ReleasedHandle* find_released(unsigned handle) const;

    List& live() { return m_live; }
    unsigned long created() const { return m_created; }

  private:
    // Far from addresses and from small numbers, so that a number that is no handle is not one by
    // chance; with space between them, for the same reason.
    static constexpr unsigned kFirst = 0x47000000;
    static constexpr unsigned kStep = 16;

    List m_live;
    unsigned long m_created = 0;
    std::array<ReleasedHandle, 256> m_released = {};  ///< the latest ones, as a ring
    std::size_t m_next_released = 0;
};

}  // namespace guard
