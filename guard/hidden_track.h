// A track hidden chunk by chunk.
#pragma once

#include <cstddef>
#include <string_view>

#include "guard/hidden_payload.h"
#include "guard/hidden_text.h"

namespace guard {

/// Follows a parser's lines and blocks, to know what is text. The chunks' sizes stay, and so does
/// what comes of them but for the texts.
class TrackHider {
  public:
    /// Hides a chunk in its place, before it is fed.
    void hide(char* bytes, std::size_t size);

    /// After the chunk was fed.
    /// @param is_lost its rest was given up: result 2, or an exception
    /// @param printed what the module printed
    void end_chunk(bool is_lost, std::string_view printed);

  private:
    enum class Part : unsigned char {
        kFirstLine,
        kHeader,
        kTiming,   ///< a block's lines up to its timing line
        kPayload,  ///< those behind it
        kNoCue,    ///< those of a block that has none
    };

    char hide_byte(char byte);
    /// Ends a line of the chunk.
    void end_line();
    /// Ends a line of the text, which a zero byte may have joined with the next.
    void end_text_line();
    void begin_block();
    void end_block();

    Part m_part = Part::kFirstLine;
    FirstLineHider m_first_line;
    LineHider m_line;
    PayloadHider m_payload;

    bool m_is_blank = true;  ///< nothing in the line so far
    bool m_is_cut = false;   ///< a zero byte was in the line: nothing behind it counts
    unsigned m_lines = 0;    ///< of the block
    bool m_fails = false;    ///< the block, as far as it has come, ends with an error
    bool m_has_pending_cr = false;

    unsigned long m_read_lines = 0;
    bool m_knows_lines = true;  ///< they are counted as the module counts them

    // Of the chunk that is being fed.
    bool m_had_pending_cr = false;
    unsigned m_blocks = 0;  ///< that it completes
    bool m_first_block_fails = false;
    unsigned long m_first_block_end = 0;  ///< the number of the last line of the first of them
};

}  // namespace guard
