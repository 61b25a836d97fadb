// A parser as a careful host sees it, for the fuzz target of the whole module.
#pragma once

#include <cstddef>
#include <string_view>

#include "support/memory.h"
#include "support/module.h"
#include "support/parser.h"

namespace fuzz {

/// The method table, read as a host reads it.
const support::Methods& methods();

/// Calls everything with a handle that is not live: nothing may happen.
void call_with_stray_handle(support::Handle handle);

/// What the parsers take their memory from, and which allocations of a call fail.
struct Budget {
    support::Memory memory;
    unsigned spared = 0;  ///< so many succeed
    unsigned times = 0;   ///< so many fail after them; kForEver: in every call, all of them
    static constexpr unsigned kForEver = support::Memory::kForEver;
};

/// Every call is checked against what the module promises: results, exceptions, whole records,
/// counts, no cue from a track that was rejected. The first broken promise ends the program.
class HostedParser {
  public:
    /// Creates a parser and registers a callback for it, unless memory runs out.
    /// @param budget for this call and for feed; its plan is used, and used up, as long as this
    ///               lives
    explicit HostedParser(Budget& budget);
    HostedParser(const HostedParser&) = delete;
    HostedParser& operator=(const HostedParser&) = delete;
    /// Releases the parser; its handle must be dead afterwards.
    ~HostedParser();

    /// 0 when there was no memory to create it. Its other calls are then calls with handle 0.
    support::Handle handle() const { return m_parser.handle(); }

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

    static Budget& with_plan(Budget& budget);
    void end_plan();
    void check_result(std::string_view chunk, support::Ending result);

    Budget& m_budget;
    support::Parser m_parser;
    State m_state = State::kNew;
    bool m_ran_out = false;       // an allocation has failed in the last call
    bool m_fed_bracket = false;   // a "<" was among the bytes fed
    std::size_t m_fed = 0;        // bytes
    std::size_t m_delivered = 0;  // bytes of text
};

}  // namespace fuzz
