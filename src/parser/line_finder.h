// Finds the lines of a chunk where they lie.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/byte_finder.h"

namespace webvtt {

/// Complete lines of a chunk that are used together: any number that lie there as they are used, or
/// one that does not. A line ends in LF, CR LF or CR, and its text is cut at the first zero byte:
/// what is behind that, line end included, is consumed but is not part of the text.
struct ChunkLines {
    std::string_view text;   ///< without the last line end
    std::string_view bytes;  ///< without the last line end, but not cut
    std::size_t consumed;    ///< how many bytes they take, line ends and a blank line included
    unsigned count;          ///< how many there are, the blank line behind them apart
    bool blank_follows;      ///< and is consumed with them
    bool is_cut;             ///< a zero byte hides the rest
    bool ends_in_line_feed;  ///< and in nothing else, so text and line end lie as they are used
    bool ends_in_open_cr;    ///< a CR as the chunk's last byte: its LF may still come

    /// One byte at most, a line feed counted: what a blank line has, and a cut one may have.
    bool is_blank() const { return text.size() + (is_cut ? 0 : 1) <= 1; }
};

/// Looks at no byte of a chunk twice for any one purpose, whatever mixture of line ends the chunk
/// holds.
class LineFinder {
  public:
    /// Starts on a new chunk, which ends there and may be empty.
    void start(const char* end) {
        m_end = end;
        for (ByteFinder* const finder :
             {&m_carriage_returns, &m_zeros, &m_brackets, &m_ampersands}) {
            finder->start();
        }
    }

    /// Finds the lines that begin at begin, at least one and at most so many, up to a blank one.
    /// False when not even the first has its end in the chunk. From start on begin never goes back.
    bool find(const char* begin, unsigned most_lines, ChunkLines* lines);

    /// What follows from begin on, up to the first zero.
    std::string_view tail(const char* begin) {
        return {begin, static_cast<std::size_t>(m_zeros.find(begin, m_end) - begin)};
    }

    /// Whether there is a "<" or a "&" in this part of the chunk. From start on begin never goes
    /// back, and what lies ahead is remembered: most blocks have neither.
    bool has_markup(const char* begin, const char* end) {
        return m_brackets.find(begin, m_end) < end || m_ampersands.find(begin, m_end) < end;
    }

  private:
    bool find_odd_line(const char* begin, unsigned most_lines, ChunkLines* line);

    const char* m_end = nullptr;
    ByteFinder m_carriage_returns{'\r'};
    ByteFinder m_zeros{'\0'};
    ByteFinder m_brackets{'<'};
    ByteFinder m_ampersands{'&'};
};

inline bool LineFinder::find(const char* begin, unsigned most_lines, ChunkLines* lines) {
    // Up to here every line ends in LF alone and hides nothing.
    const char* const plain_end =
        std::min(m_carriage_returns.find(begin, m_end), m_zeros.find(begin, m_end));
    const char* line = begin;
    unsigned count = 0;
    bool blank_follows = false;
    do {
        const char* const line_feed = find_byte(line, plain_end, '\n');
        if (line_feed == plain_end) {
            break;
        }
        line = line_feed + 1;
        ++count;
        blank_follows = line - begin > 1 && line != plain_end && *line == '\n';
    } while (count != most_lines && !blank_follows && line - begin > 1);
    if (count == 0) {
        return find_odd_line(begin, most_lines, lines);
    }
    lines->text = lines->bytes = {begin, static_cast<std::size_t>(line - begin - 1)};
    lines->blank_follows = blank_follows && count != most_lines;
    lines->consumed = static_cast<std::size_t>(line - begin) + (lines->blank_follows ? 1 : 0);
    lines->count = count;
    lines->is_cut = false;
    lines->ends_in_line_feed = true;
    lines->ends_in_open_cr = false;
    return true;
}

/// Finds a line that ends in a carriage return or holds a zero byte.
inline bool LineFinder::find_odd_line(const char* begin, unsigned most_lines, ChunkLines* line) {
    const char* const carriage_return = m_carriage_returns.find(begin, m_end);
    const char* const zero = m_zeros.find(begin, m_end);
    // Before the first zero there is no line feed.
    const char* const line_end =
        zero < carriage_return ? find_byte(zero, carriage_return, '\n') : carriage_return;
    if (line_end == m_end) {
        return false;
    }
    line->is_cut = zero < line_end;
    line->bytes = {begin, static_cast<std::size_t>(line_end - begin)};
    line->text = {begin, static_cast<std::size_t>((line->is_cut ? zero : line_end) - begin)};
    line->count = 1;
    line->ends_in_line_feed = line_end != carriage_return;
    line->ends_in_open_cr = !line->ends_in_line_feed && line_end + 1 == m_end;
    const bool is_pair = !line->ends_in_line_feed && !line->ends_in_open_cr && line_end[1] == '\n';
    line->consumed = line->bytes.size() + (is_pair ? 2 : 1);
    // Tracks with CR LF have it everywhere, so a blank line behind such a one is not looked for.
    line->blank_follows = is_pair && !line->is_blank() && most_lines != 1 &&
                          m_end - line_end >= 4 && line_end[2] == '\r' && line_end[3] == '\n';
    if (line->blank_follows) {
        line->consumed += 2;
    }
    return true;
}

}  // namespace webvtt
