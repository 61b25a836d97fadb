// Finds the lines of a chunk where they lie.
#pragma once

#include <cstddef>
#include <string_view>

#include "parser/byte_finder.h"

namespace webvtt {

/// A complete line in a chunk. It ends in LF, CR LF or CR, and its text is cut at the first zero
/// byte: what is behind that, line end included, is consumed but is not part of the text.
struct ChunkLine {
    std::string_view text;   ///< without line end
    std::string_view bytes;  ///< without line end, but not cut
    std::size_t consumed;    ///< how many bytes the line takes, line end included
    bool is_cut;             ///< a zero byte hides the rest
    bool ends_in_line_feed;  ///< and in nothing else, so text and line end lie as they are used
    bool ends_in_open_cr;    ///< a CR as the chunk's last byte: its LF may still come

    /// One byte at most, a line feed counted: what a blank line has, and a cut one may have.
    bool is_blank() const { return text.size() + (is_cut ? 0 : 1) <= 1; }
};

/// Looks at no byte of a chunk twice, whatever mixture of line ends the chunk holds.
class LineFinder {
  public:
    /// Starts on a new chunk, which may be empty.
    void start(const char* begin, const char* end) {
        m_end = end;
        m_line_feeds.start(begin, end);
        m_carriage_returns.start(begin, end);
        m_zeros.start(begin, end);
    }

    /// Finds the line that begins at begin; false when it has no end in the chunk. From start on
    /// begin never goes back.
    bool find(const char* begin, ChunkLine* line) {
        const char* const line_feed = m_line_feeds.find(begin, m_end);
        const char* const carriage_return = m_carriage_returns.find(begin, m_end);
        const bool is_line_feed = line_feed < carriage_return;
        const char* const line_end = is_line_feed ? line_feed : carriage_return;
        if (line_end == m_end) {
            return false;
        }
        const char* const zero = m_zeros.find(begin, m_end);
        line->is_cut = zero < line_end;
        line->bytes = {begin, static_cast<std::size_t>(line_end - begin)};
        line->text = {begin, static_cast<std::size_t>((line->is_cut ? zero : line_end) - begin)};
        const bool is_pair = line_feed == line_end + 1 && line_feed != m_end;
        line->consumed = line->bytes.size() + (is_pair ? 2 : 1);
        line->ends_in_line_feed = is_line_feed;
        line->ends_in_open_cr = !is_line_feed && line_end + 1 == m_end;
        return true;
    }

    /// What follows from begin on, up to the first zero.
    std::string_view tail(const char* begin) {
        return {begin, static_cast<std::size_t>(m_zeros.find(begin, m_end) - begin)};
    }

  private:
    const char* m_end = nullptr;
    ByteFinder m_line_feeds{'\n'};
    ByteFinder m_carriage_returns{'\r'};
    ByteFinder m_zeros{'\0'};
};

}  // namespace webvtt
