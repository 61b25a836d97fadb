// The memory that the module asks for: counted, and running out when a test says so.
//
// Linking module_memory.cpp replaces the program's operator new and delete. The program must be
// linked with its symbols exported: a module that it loads then finds these operators before those
// of the C++ library.
#pragma once

#include <cstddef>
#include <limits>

namespace host {

/// What is allocated and freed during calls made under it. A test's own allocations, between the
/// calls and in callbacks, are none of its business. One thread only.
class ModuleMemory {
  public:
    /// Makes this memory count, and fail by its plan, while it lives. Exceptions that leave the
    /// module must be caught under it: their messages are the module's blocks.
    class Use {
      public:
        explicit Use(ModuleMemory& memory);
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();

      protected:
        explicit Use(ModuleMemory* memory);

      private:
        ModuleMemory* m_before;
    };

    /// For callbacks: allocations are the test's own while it lives.
    class Pause : public Use {
      public:
        Pause();
    };

    // Plans. Allocations are counted from 1 since the plan was made; without a plan none fails.
    void fail_once(unsigned number) { plan(number, number, 0); }
    void fail_from(unsigned number) { plan(number, kForEver, 0); }
    void fail_from_size(std::size_t size) { plan(1, kForEver, size); }
    void fail_nothing() { plan(1, 0, 0); }

    /// Allocations, failed ones included, and those that failed, since the plan was made.
    unsigned allocations() const { return m_allocations; }
    unsigned failures() const { return m_failures; }

    /// Blocks that are not freed yet.
    long live_blocks() const { return m_live_blocks; }

    // For operator new and delete.
    static void* allocate(std::size_t size) noexcept;
    static void release(void* block) noexcept;

  private:
    static constexpr unsigned kForEver = std::numeric_limits<unsigned>::max();

    void plan(unsigned first, unsigned last, std::size_t smallest);
    bool fails(std::size_t size);

    unsigned m_first = 1;
    unsigned m_last = 0;
    std::size_t m_smallest = 0;
    unsigned m_allocations = 0;
    unsigned m_failures = 0;
    long m_live_blocks = 0;
};

}  // namespace host
