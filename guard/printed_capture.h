// What the module writes to standard output.
#pragma once

#include "guard/bytes.h"

namespace guard {

/// While it lives, what its thread writes by printf or std::cout is kept, and goes where it goes
/// otherwise, byte for byte and in the same order. Or it is dropped.
///
/// For that the C library's variable `stdout` and the buffer of std::cout lead to the guard as long
/// as any thread captures. What other threads write meanwhile passes through. The stream that
/// `stdout` leads to then shares its lock with the one before, so that whoever holds that with
/// flockfile() holds it still.
class PrintedCapture {
  public:
    /// Whether it can be done: the C library's `stdout` is a variable, and the module has no
    /// std::cout of its own.
    /// @param library the loaded module
    static bool is_possible(void* library);

    /// What becomes of what a thread writes.
    struct Fate {
        Bytes* kept_in = nullptr;
        bool is_dropped = false;

        bool is_usual() const { return kept_in == nullptr && !is_dropped; }
    };

    /// @param bytes where what is captured is kept; null to capture nothing
    explicit PrintedCapture(Bytes* bytes) : PrintedCapture(Fate{bytes}) {}
    explicit PrintedCapture(Fate fate);
    PrintedCapture(const PrintedCapture&) = delete;
    PrintedCapture& operator=(const PrintedCapture&) = delete;
    ~PrintedCapture();

    /// The host's own code runs, which writes as ever and isn't captured.
    class Pause {
      public:
        Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
        ~Pause();

      private:
        Fate m_fate;
    };

    // A process that forks: the child has one thread, and captures nothing more.
    static void before_fork();
    static void after_fork();
    static void after_fork_in_child();

    /// Nothing leads to the guard any more.
    static void end();

  private:
    Fate m_before;
    bool m_is_capturing;
};

}  // namespace guard
