#include "host/support/watched_parser.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "host/support/notation.h"
#include "support/exact_block.h"

namespace host {

WatchedParser::WatchedParser(const Methods& methods, ModuleMemory& memory)
    : m_methods(methods), m_memory(memory) {
    const ModuleMemory::Use use(m_memory);
    m_create_result = m_methods.create(&m_handle);
    if (m_create_result == 0) {
        m_methods.set_callback(m_handle, this, on_event);
    }
}

Ending WatchedParser::feed(std::string_view chunk) {
    support::ExactBlock block(chunk);
    const ModuleMemory::Use use(m_memory);
    try {
        const int result = m_methods.parse(m_handle, block.data(), block.size());
        return result >= 0 && result <= 2 ? static_cast<Ending>(result) : Ending::kUndocumented;
    } catch (const std::bad_alloc&) {
        return Ending::kBadAlloc;
    } catch (const std::out_of_range&) {
        return Ending::kOutOfRange;
    } catch (...) {
        return Ending::kUndocumented;
    }
}

std::vector<support::CueRecord> WatchedParser::take() {
    m_events = 0;
    {
        const ModuleMemory::Use use(m_memory);
        m_methods.get_result(m_handle);
    }
    if (m_events != 1) {
        complain("the callback was called " + std::to_string(m_events) + " times");
    }
    return std::exchange(m_cues, {});
}

void WatchedParser::release() {
    if (m_create_result == 0) {
        const ModuleMemory::Use use(m_memory);
        m_methods.release(m_handle);
        m_create_result = -1;
    }
}

void WatchedParser::on_event(int event, void* tag, void* info) {
    const ModuleMemory::Pause pause;
    WatchedParser& parser = *static_cast<WatchedParser*>(tag);
    ++parser.m_events;
    support::Delivery delivery(info);
    if (event != 0 || delivery.count != delivery.cues.size() || delivery.reserved != 0) {
        parser.complain("the event or its info block is wrong");
    }
    for (support::CueRecord& cue : delivery.cues) {
        parser.check(cue);
        parser.m_cues.push_back(std::move(cue));
    }
}

void WatchedParser::check(const support::CueRecord& cue) {
    const bool whole = cue.has_text && !cue.has_aux_text && cue.reserved == 0 &&
                       cue.snap_to_lines <= 1 && cue.position <= 100 && cue.text_align >= 0 &&
                       cue.text_align <= 4 && cue.vertical >= 0 && cue.vertical <= 2;
    if (!whole) {
        complain("not a whole record: " + describe(cue));
    }
}

}  // namespace host
