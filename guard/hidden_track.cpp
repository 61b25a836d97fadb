#include "guard/hidden_track.h"

#include <cstdlib>

namespace guard {
namespace {

constexpr unsigned kMostLines = 10;  // of a block; what follows is a block of its own
constexpr std::string_view kExhausted = "[WEBVTT] ERR:: Buffer Exhausted\n";
constexpr std::string_view kError = "[WEBVTT] ERR:: Error occured at LINE ";

/// The number of the line at which a block first failed with an error; 0 when none did.
unsigned long first_error_line(std::string_view printed) {
    const std::size_t at = printed.find(kError);
    unsigned long line = 0;
    for (std::size_t digit = at + kError.size();
         at != std::string_view::npos && digit < printed.size() && printed[digit] != '\n';
         ++digit) {
        line = line * 10 + static_cast<unsigned long>(printed[digit] - '0');
    }
    return line;
}

}  // namespace

void TrackHider::hide(char* bytes, std::size_t size) {
    m_had_pending_cr = m_has_pending_cr;
    m_blocks = 0;
    std::size_t at = 0;
    if (m_has_pending_cr && size != 0 && bytes[0] == '\n') {
        m_has_pending_cr = m_had_pending_cr = false;
        at = 1;
    }
    const bool has_line_end =
        std::string_view(bytes, size).find_first_of("\r\n", at) != std::string_view::npos;
    if (m_part == Part::kHeader && !has_line_end) {
        m_line = LineHider();  // a header's earlier pieces are lost
        m_is_cut = false;
        m_is_blank = true;
    }
    for (; at < size; ++at) {
        const char byte = bytes[at];
        if (byte != '\r' && byte != '\n') {
            bytes[at] = hide_byte(byte);
            continue;
        }
        if (byte == '\r' && at + 1 == size) {
            m_has_pending_cr = true;
        } else if (byte == '\r' && bytes[at + 1] == '\n') {
            ++at;
        }
        end_line();
    }
    m_is_cut = false;  // what is carried to the next chunk ends at the zero byte, and goes on there
}

char TrackHider::hide_byte(char byte) {
    m_is_blank = false;
    m_is_cut = m_is_cut || byte == '\0';
    if (m_is_cut) {
        return hidden_byte(byte);
    }
    switch (m_part) {
        case Part::kFirstLine:
            return m_first_line.hide(byte);
        case Part::kHeader:
        case Part::kTiming:
            return m_line.hide(byte);
        case Part::kPayload:
            return m_payload.hide(byte);
        default:
            return hidden_byte(byte);
    }
}

void TrackHider::end_line() {
    ++m_read_lines;
    const bool is_blank = m_is_blank;
    const bool is_cut = m_is_cut;
    m_is_blank = true;
    m_is_cut = false;
    if (m_part == Part::kFirstLine) {
        m_part = Part::kHeader;
    } else if (m_part == Part::kHeader) {
        m_line = LineHider();
        if (is_blank) {
            begin_block();
        }
    } else if (is_blank) {
        if (m_lines != 0) {
            end_block();
        }
    } else {
        ++m_lines;
        if (!is_cut) {
            end_text_line();
        }
        if (m_lines == kMostLines) {
            end_block();
        }
    }
}

void TrackHider::end_text_line() {
    if (m_part == Part::kPayload) {
        m_payload.hide('\n');
        m_fails = false;
    } else if (m_part == Part::kTiming) {
        const bool is_second = m_lines > 1;
        if (m_line.has_arrow()) {
            m_fails = true;  // with a wrong time at once, else unless text follows
            m_part = m_line.may_begin_with_time() ? Part::kPayload : Part::kNoCue;
        } else if (is_second) {
            m_part = Part::kNoCue;
        }
        m_line = LineHider();
    }
}

void TrackHider::end_block() {
    if (m_blocks++ == 0) {
        m_first_block_end = m_read_lines;
        m_first_block_fails = m_fails;
    }
    begin_block();
}

void TrackHider::begin_block() {
    m_part = Part::kTiming;
    m_lines = 0;
    m_fails = false;
    m_line = LineHider();
    m_payload = PayloadHider();
}

void TrackHider::end_chunk(bool is_lost, std::string_view printed) {
    // The first block of a chunk that fails with an error takes the chunk's rest with it. Which
    // block it was is told by the number of its last line, if that is known.
    const unsigned long error_line = first_error_line(printed);
    const bool is_first = m_knows_lines ? error_line == m_first_block_end : m_first_block_fails;
    const bool loses_rest = error_line != 0 && (m_blocks == 1 || (m_blocks > 1 && is_first));
    if (loses_rest) {
        m_read_lines = error_line;
    }
    if ((!is_lost && !loses_rest) || m_part == Part::kFirstLine) {
        return;
    }
    m_knows_lines = loses_rest;
    m_is_blank = true;
    m_is_cut = false;
    m_line = LineHider();
    if (printed.find(kExhausted) == std::string_view::npos) {
        m_has_pending_cr = m_had_pending_cr;  // the chunk's last line is among what is lost
    }
    if (m_part != Part::kHeader) {
        begin_block();
    }
}

}  // namespace guard
