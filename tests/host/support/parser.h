// One parser, from Create to Release, for tests that care about cues more than about calls.
#pragma once

#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "host/support/module.h"
#include "support/cue_record.h"
#include "support/exact_block.h"

namespace host {

class Parser {
  public:
    /// Creates a parser and registers a callback.
    explicit Parser(const Methods& methods) : m_methods(methods) {
        if (m_methods.create(&m_handle) != 0) {
            std::abort();
        }
        m_methods.set_callback(m_handle, this, on_event);
    }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;
    ~Parser() { m_methods.release(m_handle); }

    Handle handle() const { return m_handle; }

    /// Feeds a chunk out of a block of its exact size, which is gone after the call.
    int feed(std::string_view chunk) {
        support::ExactBlock block(chunk);
        return m_methods.parse(m_handle, block.data(), block.size());
    }

    /// The cues completed since the last time.
    std::vector<support::CueRecord> take() {
        m_methods.get_result(m_handle);
        return std::exchange(m_cues, {});
    }

  private:
    static void on_event(int /*event*/, void* tag, void* info) {
        std::vector<support::CueRecord>& cues = static_cast<Parser*>(tag)->m_cues;
        for (support::CueRecord& cue : support::Delivery(info).cues) {
            cues.push_back(std::move(cue));
        }
    }

    const Methods m_methods;
    Handle m_handle = 0;
    std::vector<support::CueRecord> m_cues;
};

}  // namespace host
