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
    /// Forgets the last chunk.
    void reset() {
        m_line_feeds.reset();
        m_carriage_returns.reset();
        m_zeros.reset();
    }

    /// Finds the line that begins at begin; false when it has no end in the chunk. Between resets
    /// end stays the same and begin never goes back.
    bool find(const char* begin, const char* end, ChunkLine* line) {
        const char* const line_feed = m_line_feeds.find(begin, end);
        const char* const carriage_return = m_carriage_returns.find(begin, end);
        const bool is_line_feed = line_feed < carriage_return;
        const char* const line_end = is_line_feed ? line_feed : carriage_return;
        if (line_end == end) {
            return false;
        }
        const bool is_pair = line_feed == line_end + 1 && line_feed != end;
        line->bytes = {begin, static_cast<std::size_t>(line_end - begin)};
        line->text = cut_at_zero(line->bytes, end);
        line->consumed = line->bytes.size() + (is_pair ? 2 : 1);
        line->is_cut = line->text.size() < line->bytes.size();
        line->ends_in_line_feed = is_line_feed;
        line->ends_in_open_cr = !is_line_feed && line_end + 1 == end;
        return true;
    }

    /// The bytes before the first zero.
    std::string_view cut_at_zero(std::string_view bytes, const char* end) {
        const char* const zero = m_zeros.find(bytes.data(), end);
        return bytes.substr(0, static_cast<std::size_t>(zero - bytes.data()));
    }

  private:
    ByteFinder m_line_feeds{'\n'};
    ByteFinder m_carriage_returns{'\r'};
    ByteFinder m_zeros{'\0'};
};

}  // namespace webvtt
