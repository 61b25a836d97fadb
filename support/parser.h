// One parser of the module, driven with care.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "support/cue_record.h"
#include "support/memory.h"
#include "support/module.h"

namespace support {

/// How a call of parse ended: its result, or what it threw.
enum class Ending {
    kOk = 0,
    kHeader = 1,
    kError = 2,
    kBadAlloc,
    kOutOfRange,
    kUndocumented,  // any other result or exception
};

/// All calls are made under the memory given, which must outlive the parser, as must the module.
class Parser {
  public:
    /// Creates a parser and registers a callback.
    explicit Parser(const Methods& methods, Memory& memory = Memory::of_program());
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;
    ~Parser() { release(); }

    /// Create's result and handle; there is no parser when memory ran out.
    int create_result() const { return m_create_result; }
    Handle handle() const { return m_handle; }

    /// Feeds a chunk out of a block of its exact size, which is gone after the call.
    Ending feed(std::string_view chunk);
    /// Feeds a chunk where it lies.
    Ending feed_in_place(std::string_view chunk);

    /// The cues completed since the last time. Notes in complaint() what is wrong with them.
    std::vector<CueRecord> take();

    void release();

    /// What a host was handed that it must never see; empty when all is well.
    const std::string& complaint() const { return m_complaint; }

  private:
    static void on_event(int event, void* tag, void* info);
    void complain(const std::string& text) { m_complaint += text + "; "; }

    const Methods m_methods;
    Memory& m_memory;
    int m_create_result;
    Handle m_handle = 0xFFFFFFFF;
    std::vector<CueRecord> m_cues;
    unsigned m_events = 0;
    std::string m_complaint;
};

}  // namespace support
