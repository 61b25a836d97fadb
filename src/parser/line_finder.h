// Finds the lines of a chunk where they lie.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/byte_finder.h"

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

/// A block of a chunk that can be used as it lies there: its lines end in LF alone and hold no zero
/// byte, and a blank line, or the number of its lines, ends it.
struct ChunkBlock {
    std::string_view text;  ///< with each line's LF, without the blank lines around it
    unsigned line_feeds;    ///< how many lines that is
    unsigned blank_lines;   ///< before it, and the one behind it if that ended it
    std::size_t consumed;   ///< how many bytes all of them take
    bool may_have_markup;   ///< false when there is no "<" and no "&" in the text
};

/// Looks at no byte of a chunk twice for any one purpose, whatever mixture of line ends the chunk
/// holds.
class LineFinder {
  public:
    /// Starts on a new chunk, which ends there and may be empty.
    void start(const char* end) {
        m_end = end;
        for (ByteFinder* const finder :
             {&m_line_feeds, &m_carriage_returns, &m_zeros, &m_brackets, &m_ampersands}) {
            finder->start();
        }
    }

    /// Finds the block that begins at begin, behind any blank lines. False when it is not complete,
    /// or cannot be used as it lies; find then gets its lines one by one.
    bool find_block(const char* begin, unsigned most_lines, ChunkBlock* block);

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
    bool has_markup(std::string_view text) {
        const char* const text_end = text.data() + text.size();
        return m_brackets.find(text.data(), m_end) < text_end ||
               m_ampersands.find(text.data(), m_end) < text_end;
    }

    const char* m_end = nullptr;
    ByteFinder m_line_feeds{'\n'};
    ByteFinder m_carriage_returns{'\r'};
    ByteFinder m_zeros{'\0'};
    ByteFinder m_brackets{'<'};
    ByteFinder m_ampersands{'&'};
};

inline bool LineFinder::find_block(const char* begin, unsigned most_lines, ChunkBlock* block) {
    // Up to here every line ends in LF alone and hides nothing.
    const char* const plain_end =
        std::min(m_carriage_returns.find(begin, m_end), m_zeros.find(begin, m_end));
    const char* line = begin;
    while (line != plain_end && *line == '\n') {
        ++line;
    }
    const char* const text = line;
    block->blank_lines = static_cast<unsigned>(text - begin);
    block->line_feeds = 0;
    do {
        const char* const line_feed = find_byte(line, plain_end, '\n');
        if (line_feed == plain_end) {
            return false;
        }
        line = line_feed + 1;
        ++block->line_feeds;
    } while (block->line_feeds != most_lines && (line == plain_end || *line != '\n'));

    block->text = {text, static_cast<std::size_t>(line - text)};
    if (block->line_feeds != most_lines) {
        ++block->blank_lines;
        ++line;
    }
    block->consumed = static_cast<std::size_t>(line - begin);
    block->may_have_markup = has_markup(block->text);
    return true;
}

}  // namespace webvtt
