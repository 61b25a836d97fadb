// Finds the lines of a chunk where they lie.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/byte_finder.h"

namespace webvtt {

/// Complete lines of a chunk that are used together: any number with nothing but line ends between
/// them, or one in which a zero byte hides the rest, or whose line end may go on in the next chunk.
/// A line ends in LF, CR LF or CR, and its text is cut at the first zero byte: what is behind that,
/// line end included, is consumed but is not part of the text.
struct ChunkLines {
    static constexpr unsigned kMost = 10;

    std::string_view text;    ///< without the last line end
    std::string_view bytes;   ///< without the last line end, but not cut
    std::size_t consumed;     ///< how many bytes they take, line ends and a blank line included
    unsigned count;           ///< how many there are, the blank line behind them apart
    bool blank_follows;       ///< and is consumed with them
    bool is_cut;              ///< a zero byte hides the rest
    bool ends_in_line_feed;   ///< each, and in nothing else: the lines lie as they are used
    bool ends_in_open_cr;     ///< a CR as the chunk's last byte: its LF may still come
    const char* ends[kMost];  ///< where the text of each line ends

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

    /// Forgets what lies ahead: the next begin may lie in front of the last one.
    void look_again() { start(m_end); }

    /// Finds the lines that begin at begin, at least one and at most so many (1 to
    /// ChunkLines::kMost), up to a blank one. False when not even the first has its end in the
    /// chunk. From start or look_again on begin moves behind what was found.
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
    const char* find_odd_byte(const char* from);
    bool find_odd_line(const char* begin, const char* text_end, ChunkLines* line);

    const char* m_end = nullptr;
    ByteFinder m_carriage_returns{'\r'};
    ByteFinder m_zeros{'\0'};
    ByteFinder m_brackets{'<'};
    ByteFinder m_ampersands{'&'};
};

/// The first carriage return or zero byte, or the chunk's end: up to there every line ends in LF
/// alone and hides nothing.
inline const char* LineFinder::find_odd_byte(const char* from) {
    return std::min(m_carriage_returns.find(from, m_end), m_zeros.find(from, m_end));
}

inline bool LineFinder::find(const char* begin, unsigned most_lines, ChunkLines* lines) {
    const char* line = begin;  // behind what was found
    const char* odd = find_odd_byte(begin);
    unsigned count = 0;
    lines->blank_follows = false;
    lines->ends_in_line_feed = true;
    do {
        const bool blank = line == odd || *line == '\n';
        const char* const line_end = blank ? line : find_byte(line, odd, '\n');
        const char* behind = line_end + 1;
        if (line_end == odd) {
            if (odd == m_end || *odd == '\0' || behind == m_end) {
                if (count == 0) {
                    return find_odd_line(begin, odd, lines);
                }
                break;
            }
            behind += *behind == '\n' ? 1 : 0;
            lines->ends_in_line_feed = false;
            odd = find_odd_byte(behind);
        }
        if (blank && count != 0) {
            lines->blank_follows = true;
            line = behind;
            break;
        }
        lines->ends[count++] = line_end;
        line = behind;
    } while (count != most_lines && lines->ends[0] != begin);
    lines->count = count;
    lines->text = {begin, static_cast<std::size_t>(lines->ends[count - 1] - begin)};
    lines->bytes = lines->text;
    lines->consumed = static_cast<std::size_t>(line - begin);
    lines->is_cut = false;
    lines->ends_in_open_cr = false;
    return true;
}

/// Finds a line that a zero byte cuts there, or that ends there in a CR which is the chunk's last
/// byte.
inline bool LineFinder::find_odd_line(const char* begin, const char* text_end, ChunkLines* line) {
    const char* const line_end =
        find_byte(text_end, m_carriage_returns.find(text_end, m_end), '\n');
    if (line_end == m_end) {
        return false;
    }
    line->count = 1;
    line->ends[0] = text_end;
    line->text = {begin, static_cast<std::size_t>(text_end - begin)};
    line->bytes = {begin, static_cast<std::size_t>(line_end - begin)};
    line->is_cut = text_end != line_end;
    line->ends_in_line_feed = *line_end == '\n';
    line->ends_in_open_cr = !line->ends_in_line_feed && line_end + 1 == m_end;
    const bool is_pair = !line->ends_in_line_feed && !line->ends_in_open_cr && line_end[1] == '\n';
    line->consumed = line->bytes.size() + (is_pair ? 2 : 1);
    return true;
}

}  // namespace webvtt
