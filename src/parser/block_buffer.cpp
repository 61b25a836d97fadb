#include "parser/block_buffer.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>

#include "base/target.h"

namespace webvtt {

bool BlockBuffer::fgCopyLines(const ChunkLines& lines) {
    if (!fgReserve(lines.text.size() + 1)) {
        return false;
    }
    const char* line = lines.text.data();
    for (unsigned i = 0;; ++i) {
        const char* const end = lines.ends[i];
        assert(uLineFeedsIn({line, static_cast<std::size_t>(end - line)}) == 0);
        vPut({line, static_cast<std::size_t>(end - line)});
        if (lines.is_cut) {
            return true;
        }
        m_data[m_size] = '\n';
        m_data[++m_size] = '\0';
        ++m_line_feeds;
        if (i + 1 == lines.count) {
            return true;
        }
        line = end + (end[0] == '\r' && end[1] == '\n' ? 2 : 1);
    }
}

bool BlockBuffer::fgAppendText(std::string_view text) {
    if (!fgReserve(text.size())) {
        return false;
    }
    vPut(text);
    m_line_feeds += uLineFeedsIn(text);
    return true;
}

void BlockBuffer::vPut(std::string_view text) {
    if (!text.empty()) {
        std::memcpy(m_data.get() + m_size, text.data(), text.size());
        m_size += text.size();
    }
    m_data[m_size] = '\0';
    assert(fgIsTerminated());
}

/// Makes the text the buffer's own, with room for so many bytes more and the terminating zero.
bool BlockBuffer::fgReserve(std::size_t uMore) {
    // The sum cannot wrap: what is to be appended lies in memory beside what is held.
    const std::size_t needed = m_size + uMore + 1;
    assert(fgIsTerminated());
    if (fgOwns() && needed <= m_capacity) {
        return true;
    }
    if (needed <= m_capacity) {
        // The storage is there, from an earlier text; what is borrowed moves into it.
        if (m_size != 0) {
            std::memcpy(m_data.get(), m_text, m_size);
        }
        m_text = m_data.get();
        return true;
    }
    // Half as much again each time: the cost of moving stays in proportion, and old and new
    // storage together stay below two and a half times the text.
    const std::size_t capacity = std::max({kFirstCapacity, needed, m_capacity + m_capacity / 2});
    std::unique_ptr<char[]> data(new (std::nothrow) char[capacity]);
    if (data == nullptr) {
        return false;
    }
    if (m_size != 0) {
        std::memcpy(data.get(), m_text, m_size);
    }
    m_data = std::move(data);
    m_text = m_data.get();
    m_capacity = capacity;
    return true;
}

void BlockBuffer::vTruncate(std::size_t uNewSize, unsigned uNewLineFeeds) {
    if (fgOwns()) {
        m_data[uNewSize] = '\0';
    }
    m_size = uNewSize;
    m_line_feeds = uNewLineFeeds;
    assert(fgIsTerminated() && uLineFeedsIn(strText()) == m_line_feeds);
}

void BlockBuffer::vFreeStorage() {
    m_data.reset();
    m_capacity = 0;
}

}  // namespace webvtt
