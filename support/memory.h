// The memory that the module asks for: counted, and running out when a test says so.
//
// Linking quillcaption_memory replaces the program's operator new and delete; without it nothing
// is counted and nothing fails. A module that is loaded uses these operators too if the program
// exports its symbols.
#pragma once

#include <cstddef>
#include <limits>

namespace support {

/// What is allocated and freed while this memory is in use. For one thread at a time; each thread
/// begins with that of the program in use.
class Memory {
  public:
    /// Lets this memory count, and fail by its plan, while it lives. Exceptions that leave the
    /// module must be caught under it: their messages are the module's blocks.
    class Use {
      public:
        explicit Use(Memory& memory) : m_before(s_current) { s_current = &memory; }
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use() { s_current = m_before; }

      private:
        Memory* m_before;
    };

    /// In use whenever no other is. Callbacks use it for what is their own.
    static Memory& of_program() { return s_program; }

    // Plans. Allocations of at least `smallest` bytes are counted from 1 since the plan was made,
    // and those from `first` to `last` fail; without a plan none does.
    void fail(unsigned first, unsigned last, std::size_t smallest = 0);
    void fail_once(unsigned number) { fail(number, number); }
    void fail_from(unsigned number) { fail(number, kForEver); }
    void fail_from_size(std::size_t size) { fail(1, kForEver, size); }
    void fail_nothing() { fail(1, 0); }
    static constexpr unsigned kForEver = std::numeric_limits<unsigned>::max();

    /// Allocations, failed ones included, and those that failed, since the plan was made.
    unsigned allocations() const { return m_allocations; }
    unsigned failures() const { return m_failures; }

    /// Blocks that are not freed yet, with what they take from the heap, the allocator's own word
    /// included, and the most that they took at one time.
    long live_blocks() const { return m_live_blocks; }
    std::size_t live_bytes() const { return m_live_bytes; }
    std::size_t peak_bytes() const { return m_peak_bytes; }
    /// Lets the peak start over from what is live now.
    void restart_peak() { m_peak_bytes = m_live_bytes; }

    // For operator new and delete.
    static void* allocate(std::size_t size) noexcept;
    static void release(void* block) noexcept;

  private:
    bool fails(std::size_t size);

    static Memory s_program;
    static thread_local Memory* s_current;

    unsigned m_first = 1;
    unsigned m_last = 0;
    std::size_t m_smallest = 0;
    unsigned m_allocations = 0;
    unsigned m_failures = 0;
    long m_live_blocks = 0;
    std::size_t m_live_bytes = 0;
    std::size_t m_peak_bytes = 0;
};

/// While it lives, the program's allocations of at least the given size fail: after the first
/// `spared` of them, `times` in number.
class FailingNew {
  public:
    explicit FailingNew(std::size_t smallest, unsigned spared = 0,
                        unsigned times = Memory::kForEver);
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
    ~FailingNew() { Memory::of_program().fail_nothing(); }

    /// How many allocations have failed since construction.
    unsigned failures() const { return Memory::of_program().failures(); }
};

/// The program's blocks that are allocated and not yet freed.
inline long live_blocks() {
    return Memory::of_program().live_blocks();
}

}  // namespace support
