// One parser behind its handle, driven as a host drives it and watched more closely than a host
// can.
#pragma once

#include <cstddef>
#include <string_view>

#include "quillcaption/quillcaption.h"

namespace fuzz {

/// The method table, reached as a host reaches it.
const WebvttModuleMethods& methods();

/// Calls everything with a handle that is not live: nothing may happen.
void call_with_stray_handle(unsigned int handle);

/// Which allocations of a call fail.
struct MemoryPlan {
    unsigned spared = 0;  ///< so many succeed
    unsigned times = 0;   ///< so many fail after them; kForEver: in every call, all of them
    static constexpr unsigned kForEver = ~0u;
};

/// Every call is checked against what the module promises: results, exceptions, whole records,
/// counts, no cue from a track that was rejected. The first broken promise ends the program.
///
/// Chunks are handed over in blocks of exactly their size, which are overwritten and freed when the
/// call is over.
class HostedParser {
  public:
    /// Creates a parser and registers a callback for it, unless memory runs out.
    /// @param memory the plan for this call and for feed; used, and used up, as long as this lives
    explicit HostedParser(MemoryPlan* memory);
    HostedParser(const HostedParser&) = delete;
    HostedParser& operator=(const HostedParser&) = delete;
    /// Releases the parser; its handle must be dead afterwards.
    ~HostedParser();

    /// 0 when there was no memory to create it. Its other calls are then calls with handle 0.
    unsigned int handle() const { return m_handle; }

    void feed(std::string_view chunk);
    /// No chunk, and a chunk without bytes.
    void feed_nothing();
    /// Asks for the cues, twice: the second list must be empty.
    void deliver();
    void set_video_time(unsigned long ticks);
    /// Registers a null callback, which must leave the registered one in place.
    void register_nothing();

  private:
    /// What is known of the parser from outside.
    enum class State {
        kNew,       // nothing was fed
        kHeader,    // the signature was accepted
        kCues,      // and the header section is over
        kRejected,  // the signature was refused
        kUnclear    // memory ran out on the way: it may be any of these
    };
    enum class Outcome { kResult, kOutOfRange, kBadAlloc };

    static void on_event(WEBVTT_EVENT_T event, void* tag, void* info);

    void note_failures(unsigned failures);
    Outcome parse(std::string_view chunk, int* result);
    void check_result(std::string_view chunk, int result);
    void check_delivery(const void* info);

    MemoryPlan* m_memory;
    unsigned int m_handle = 0;
    State m_state = State::kNew;
    bool m_ran_out = false;       // an allocation has failed in the last call
    bool m_fed_bracket = false;   // a "<" was among the bytes fed
    std::size_t m_fed = 0;        // bytes
    std::size_t m_delivered = 0;  // bytes of text
    unsigned m_deliveries = 0;
    std::size_t m_last_count = 0;
};

}  // namespace fuzz
