#include "guard/calls_in_progress.h"

#include <algorithm>
#include <functional>

#include "guard/parser_table.h"

namespace guard {

void CallsInProgress::add(const Call& call) {
    if (m_count < m_calls.size()) {
        m_calls[m_count++] = {call.frame,  call.function, call.number,
                              call.thread, call.parser,   false};
    }
}

void CallsInProgress::remove(const Call& call) {
    drop_if([&call](const CallInProgress& one) { return one.number == call.number; });
}

template <typename Left>
void CallsInProgress::drop_if(Left left) {
    const auto* const end = std::remove_if(m_calls.begin(), m_calls.begin() + m_count, left);
    m_count = static_cast<std::size_t>(end - m_calls.begin());
}

void CallsInProgress::drop_left(long thread, const void* frame) {
    drop_if([thread, frame](const CallInProgress& one) {
        const bool is_left = one.thread == thread && std::less_equal<>()(one.frame, frame);
        if (is_left && one.parser != nullptr) {
            --one.parser->calls;
        }
        return is_left;
    });
}

void CallsInProgress::keep_only(long thread, long new_thread) {
    drop_if([thread](const CallInProgress& one) {
        if (one.thread != thread && one.parser != nullptr) {
            --one.parser->calls;
        }
        return one.thread != thread;
    });
    for (std::size_t i = 0; i < m_count; ++i) {
        m_calls[i].thread = new_thread;
    }
}

CallInProgress* CallsInProgress::latest_of(long thread) {
    for (std::size_t i = m_count; i-- > 0;) {
        if (m_calls[i].thread == thread) {
            return &m_calls[i];
        }
    }
    return nullptr;
}

}  // namespace guard
