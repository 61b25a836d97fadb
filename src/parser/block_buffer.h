// The text of the block, or of the header line, that is being collected.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace webvtt {

/// A growing, zero-terminated text that outlives chunks.
///
/// A block that arrives in many small chunks is appended to, never copied over, so its cost grows
/// with its size only. The storage is used again for the next block; storage beyond kKeptCapacity
/// is given back, so that one huge block does not stay in memory.
class BlockBuffer {
  public:
    /// The text; valid until the next change. Null before anything was ever appended.
    char* pcText() { return m_data.get(); }
    std::size_t uSize() const { return m_size; }
    bool fgIsEmpty() const { return m_size == 0; }
    bool fgEndsWithLineFeed() const { return m_size != 0 && m_data[m_size - 1] == '\n'; }

    /// How many line feeds the text holds.
    unsigned uLineFeeds() const { return m_line_feeds; }

    // Both return false when memory ran out; the text is then as before.

    /// Appends a line, which holds no line feed, and the line feed that ends it.
    bool fgAppendLine(std::string_view line);
    /// Appends any text. An empty one is text as well: there is storage afterwards.
    bool fgAppendText(std::string_view text);

    /// Cuts the text back to an earlier size, at which it held so many line feeds.
    void vTruncate(std::size_t uNewSize, unsigned uNewLineFeeds);

    /// Empties the text.
    void vClear();

  private:
    static constexpr std::size_t kFirstCapacity = 256;
    static constexpr std::size_t kKeptCapacity = 65536;

    bool fgReserve(std::size_t uMore);
    void vPut(std::string_view text);

    std::unique_ptr<char[]> m_data;
    std::size_t m_size = 0;  // without the terminating zero
    std::size_t m_capacity = 0;
    unsigned m_line_feeds = 0;
};

}  // namespace webvtt
