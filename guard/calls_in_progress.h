// The calls that have begun and not ended.
#pragma once

#include <array>
#include <cstddef>

#include "guard/call.h"

namespace guard {

/// What others may know of a call in progress. A copy and not the call itself: a host that jumps
/// out of its callback leaves the call's frame without a word.
struct CallInProgress {
    const void* frame;
    Function function;
    unsigned long number;
    long thread;
    Parser* parser;
    bool is_in_callback;
};

class CallsInProgress {
  public:
    /// Begins a call. Beyond what there is room for, calls are made but not watched.
    void add(const Call& call);
    /// Ends it.
    void remove(const Call& call);

    /// Forgets the calls of this thread that lie below the frame: the host jumped out of them.
    void drop_left(long thread, const void* frame);
    /// Forgets all but those of this thread, which gets another number; for a child after a fork.
    void keep_only(long thread, long new_thread);

    /// The call of the thread that has begun last; null when there is none.
    CallInProgress* latest_of(long thread);

    const CallInProgress* begin() const { return m_calls.data(); }
    const CallInProgress* end() const { return m_calls.data() + m_count; }

  private:
    template <typename Left>
    void drop_if(Left left);

    std::array<CallInProgress, 64> m_calls = {};
    std::size_t m_count = 0;
};

}  // namespace guard
