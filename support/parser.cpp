#include "support/parser.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>
#include <utility>

#include "support/exact_block.h"
#include "support/notation.h"

namespace support {
namespace {

/// A block has at most ten lines, and its timing line is one of them.
constexpr std::ptrdiff_t kMostTextLines = 9;

/// Times wrap at 2^32 seconds; the map and the video time move them by less than that again.
constexpr double kTimeLimit = 8589934592.0;

/// Whether a record is one that the module may deliver, whatever it was fed.
bool is_whole(const CueRecord& cue) {
    const bool is_placed =
        cue.snap_to_lines == 1 || (cue.snap_to_lines == 0 && cue.line >= 0 && cue.line <= 100);
    return cue.has_text && !cue.has_aux_text && cue.reserved == 0 && is_placed &&
           cue.position <= 100 && cue.text_align >= 0 && cue.text_align <= 4 && cue.vertical >= 0 &&
           cue.vertical <= 2 &&
           // False for what is no number.
           std::fabs(cue.start) < kTimeLimit && std::fabs(cue.end) < kTimeLimit &&
           cue.text.find('\r') == std::string::npos &&
           std::count(cue.text.begin(), cue.text.end(), '\n') <= kMostTextLines;
}

bool is_documented(std::string_view out_of_range) {
    return out_of_range == "basic_string::at" || out_of_range == "basic_string::substr";
}

}  // namespace

Parser::Parser(const Methods& methods, Memory& memory) : m_methods(methods), m_memory(memory) {
    const Memory::Use use(m_memory);
    m_create_result = m_methods.create(&m_handle);
    if (m_create_result == 0) {
        m_methods.set_callback(m_handle, this, on_event);
    }
}

Ending Parser::feed(std::string_view chunk) {
    ExactBlock block(chunk);
    return feed_in_place({block.data(), block.size()});
}

Ending Parser::feed_in_place(std::string_view chunk) {
    const Memory::Use use(m_memory);
    try {
        const auto size = static_cast<unsigned>(chunk.size());
        const int result = m_methods.parse(m_handle, chunk.data(), size);
        return result >= 0 && result <= 2 ? static_cast<Ending>(result) : Ending::kUndocumented;
    } catch (const std::bad_alloc&) {
        return Ending::kBadAlloc;
    } catch (const std::out_of_range& error) {
        return is_documented(error.what()) ? Ending::kOutOfRange : Ending::kUndocumented;
    } catch (...) {
        return Ending::kUndocumented;
    }
}

std::vector<CueRecord> Parser::take() {
    m_events = 0;
    {
        const Memory::Use use(m_memory);
        m_methods.get_result(m_handle);
    }
    if (m_events != 1) {
        complain("the callback was called " + std::to_string(m_events) + " times");
    }
    return std::exchange(m_cues, {});
}

void Parser::release() {
    if (m_create_result == 0) {
        const Memory::Use use(m_memory);
        m_methods.release(m_handle);
        m_create_result = -1;
    }
}

void Parser::on_event(int event, void* tag, void* info) {
    const Memory::Use use(Memory::of_program());
    Parser& parser = *static_cast<Parser*>(tag);
    ++parser.m_events;
    Delivery delivery(info);
    if (event != 0 || delivery.count != delivery.cues.size() || delivery.reserved != 0 ||
        !delivery.has_end) {
        parser.complain("the event or its info block is wrong");
    }
    for (CueRecord& cue : delivery.cues) {
        if (!is_whole(cue)) {
            parser.complain("not a whole record: " + describe(cue));
        }
        parser.m_cues.push_back(std::move(cue));
    }
}

}  // namespace support
