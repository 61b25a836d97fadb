// The text of the block, or of the header line, that is being collected.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <memory>
#include <string_view>

#include "base/fast_paths.h"
#include "parser/line_finder.h"

namespace webvtt {

/// A text that is put together line by line and outlives chunks.
///
/// A text that lies whole in one chunk is not copied: the buffer borrows it there, for as long as
/// each next line follows directly. It becomes a copy of its own with the first line that does not,
/// and with any other text, which is how a chunk's unread tail is kept. A copy is only ever
/// appended to, so its cost grows with its size and not with the number of chunks. Its storage is
/// used again for the next text; storage beyond kKeptCapacity is given back, so that one huge
/// block does not stay in memory.
class BlockBuffer {
  public:
    /// The text; valid until the next change and, while it is borrowed, as long as its chunk.
    std::string_view strText() const { return {m_text, m_size}; }
    bool fgIsEmpty() const { return m_size == 0; }
    bool fgEndsWithLineFeed() const { return m_size != 0 && m_text[m_size - 1] == '\n'; }

    /// How many line feeds the text holds.
    unsigned uLineFeeds() const { return m_line_feeds; }

    /// The text, zero-terminated, if it is the buffer's own: after fgAppendText, until vClear.
    char* pcOwned() { return m_data.get(); }

    // Both return false when memory ran out; the text is then as before.

    /// Appends lines of a chunk and, unless they are one that is cut, a line feed.
    bool fgAppendLines(const ChunkLines& lines);
    /// Appends any text. An empty one is text as well: there is storage afterwards.
    bool fgAppendText(std::string_view text);

    /// Makes the text the buffer's own, to be written to.
    bool fgOwn() { return fgReserve(0); }

    /// Cuts the text back to an earlier size, at which it held so many line feeds.
    void vTruncate(std::size_t uNewSize, unsigned uNewLineFeeds);

    /// Empties the text.
    void vClear() {
        if (m_capacity > kKeptCapacity) {
            vFreeStorage();
        }
        m_text = nullptr;
        m_size = 0;
        m_line_feeds = 0;
    }

    /// The most storage, in bytes, that is kept for a next text: more than any ordinary block or
    /// header line needs, and little beside a decoder's buffers.
    static constexpr std::size_t kKeptCapacity = 65536;

  private:
    static constexpr std::size_t kFirstCapacity = 256;

    static unsigned uLineFeedsIn(std::string_view text) {
        return static_cast<unsigned>(std::count(text.begin(), text.end(), '\n'));
    }

    bool fgOwns() const { return m_data != nullptr && m_text == m_data.get(); }
    /// Whether a text of its own ends in its zero, within its storage.
    bool fgIsTerminated() const {
        return !fgOwns() || (m_size < m_capacity && m_data[m_size] == '\0');
    }
    bool fgCopyLines(const ChunkLines& lines);
    bool fgReserve(std::size_t uMore);
    void vFreeStorage();
    void vPut(std::string_view text);

    const char* m_text = nullptr;  // in m_data, or borrowed in the chunk
    std::size_t m_size = 0;        // without the terminating zero
    unsigned m_line_feeds = 0;
    std::unique_ptr<char[]> m_data;
    std::size_t m_capacity = 0;
};

// Inline, as every line of a block comes through here.
inline bool BlockBuffer::fgAppendLines(const ChunkLines& lines) {
    const bool follows =
        kFastPaths && (m_size == 0 || (!fgOwns() && m_text + m_size == lines.text.data()));
    if (!follows || lines.is_cut || !lines.ends_in_line_feed) {
        return fgCopyLines(lines);
    }
    if (m_size == 0) {
        m_text = lines.text.data();
    }
    assert(uLineFeedsIn(lines.text) + 1 == lines.count);
    m_size += lines.text.size() + 1;
    m_line_feeds += lines.count;
    return true;
}

}  // namespace webvtt
