#include "guard/block_tracker.h"

namespace guard {
namespace {

constexpr std::string_view kLineEnds = "\r\n";

/// Line ends at the beginning of a text, at most two of them: two make a blank line.
int line_ends_at(std::string_view text) {
    int ends = 0;
    for (std::size_t at = 0; ends < 2 && at < text.size(); ++ends) {
        if (text[at] != '\r' && text[at] != '\n') {
            break;
        }
        at += text.substr(at, 2) == "\r\n" ? 2 : 1;
    }
    return ends;
}

/// Whether the text has a blank line behind its first one.
bool has_blank_line(std::string_view text) {
    for (std::size_t at = 0; (at = text.find_first_of(kLineEnds, at)) != std::string_view::npos;) {
        if (line_ends_at(text.substr(at)) == 2) {
            return true;
        }
        at += text.substr(at, 2) == "\r\n" ? 2 : 1;
    }
    return false;
}

}  // namespace

void BlockTracker::feed(std::string_view chunk) {
    if (m_ends_in_cr && !chunk.empty() && chunk.front() == '\n') {
        chunk.remove_prefix(1);  // the second half of a line end
        m_ends_in_cr = false;
    }
    if (chunk.empty()) {
        return;
    }
    // The block that was open is finished by a blank line at the chunk's beginning, or further on.
    const bool finishes_open =
        m_is_open && (line_ends_at(chunk) == 2 || (!m_ends_in_line && line_ends_at(chunk) == 1) ||
                      has_blank_line(chunk));
    m_has_cues = m_has_cues || (finishes_open && m_has_arrow);
    const std::size_t arrow = chunk.find("-->");
    const bool has_arrow = arrow != std::string_view::npos;
    m_has_cues = m_has_cues || (has_arrow && has_blank_line(chunk.substr(arrow)));
    m_has_arrow = has_arrow || (m_has_arrow && !finishes_open);
    follow_end(chunk);
}

void BlockTracker::follow_end(std::string_view chunk) {
    const std::size_t content = chunk.find_last_not_of(kLineEnds);
    if (content != std::string_view::npos) {
        const int ends = line_ends_at(chunk.substr(content + 1));
        m_is_open = ends < 2;
        m_ends_in_line = ends == 0;
    } else {
        const int ends = line_ends_at(chunk) + (m_ends_in_line ? 0 : 1);
        m_is_open = m_is_open && ends < 2;
        m_ends_in_line = false;
    }
    m_ends_in_cr = chunk.back() == '\r';
}

void BlockTracker::lose_rest() {
    m_is_open = false;
    m_has_arrow = false;
    m_ends_in_line = false;
    m_ends_in_cr = false;
}

}  // namespace guard
