// Lines out of chunks.
//
// A line ends in LF, CR LF or CR, also when the CR ends one chunk and the LF begins the next. Lines
// are cut at their first zero byte: the bytes behind it, line end included, are not part of the
// text, although they are consumed.
#include <cstring>
#include <new>

#include "base/diagnostics.h"
#include "base/errors.h"
#include "parser/webvtt_parser.h"

namespace webvtt {

void WebVTTParser::vSetParsingBuffer(char* pcBuf, unsigned int u4Len) {
    pcParsingBuffer = pcBuf;
    u4ParsingBufferLen = u4Len;
    m_line_feeds.vReset();
    m_carriage_returns.vReset();
    m_zeros.vReset();
}

bool WebVTTParser::fgIsBufferAvailable() const {
    return pcParsingBuffer != nullptr && u4ParsingBufferLen != 0;
}

/// Looks for the next complete line without consuming it. Notes a CR that ends the chunk.
bool WebVTTParser::fgFindLine(Line_Extent* prLine) {
    if (!fgIsBufferAvailable()) {
        return false;
    }
    const char* const begin = pcParsingBuffer;
    const char* const end = begin + u4ParsingBufferLen;
    const char* const line_feed = m_line_feeds.pcFind(begin, end);
    const char* const carriage_return = m_carriage_returns.pcFind(begin, end);
    const char* const line_end = line_feed < carriage_return ? line_feed : carriage_return;
    if (line_end == end) {
        return false;
    }
    std::size_t consumed = static_cast<std::size_t>(line_end - begin) + 1;
    if (line_end == carriage_return) {
        if (line_end + 1 == end) {
            fgPendingCR = true;
        } else if (line_end[1] == '\n') {
            ++consumed;
        }
    }
    prLine->bytes = {begin, static_cast<std::size_t>(line_end - begin)};
    prLine->u4Consumed = consumed;
    return true;
}

void WebVTTParser::vConsumeLine(const Line_Extent& line) {
    if (line.u4Consumed < u4ParsingBufferLen) {
        pcParsingBuffer += line.u4Consumed;
        u4ParsingBufferLen -= line.u4Consumed;
    } else {
        print_error("Buffer Exhausted");
        vSetParsingBuffer(nullptr, 0);
    }
    ++u4LineCount;
}

bool WebVTTParser::fgCollectLine(char** ppcLine) {
    if (*ppcLine != nullptr) {
        throw InvalidArgumentException("Input pcLine Shall be empty", nullptr);
    }
    Line_Extent line;
    if (!fgFindLine(&line)) {
        return false;
    }
    const std::size_t size = line.bytes.size();
    char* const copy = new (std::nothrow) char[size + 2];
    if (copy == nullptr) {
        // One less than what was asked for; log filters know the number this way.
        print_error("Alloc %d B memory failed", static_cast<int>(size + 1));
        throw BadAllocException("Operator new failed", nullptr);
    }
    std::memcpy(copy, line.bytes.data(), size);
    copy[size] = '\n';
    copy[size + 1] = '\0';
    *ppcLine = copy;
    vConsumeLine(line);
    return true;
}

void WebVTTParser::vDestoryLine(char** ppcLine) {
    delete[] * ppcLine;
}

bool WebVTTParser::fgSaveUnusedBuffer(const char* pcPrefix) {
    vClearUnusedBuffer();
    if (pcPrefix != nullptr && !m_block.fgAppendText(pcPrefix)) {
        throw BadAllocException("Create Unused Buffer failed", nullptr);
    }
    return fgCarryTail();
}

/// Appends the chunk's unread tail to the text in m_block and carries the whole to the next call.
bool WebVTTParser::fgCarryTail() {
    pcUnusedBuffer = nullptr;
    if (m_block.fgIsEmpty() && !fgIsBufferAvailable()) {
        return false;
    }
    std::string_view tail;
    if (fgIsBufferAvailable()) {
        const char* const end = pcParsingBuffer + u4ParsingBufferLen;
        const char* const zero = m_zeros.pcFind(pcParsingBuffer, end);
        tail = {pcParsingBuffer, static_cast<std::size_t>(zero - pcParsingBuffer)};
    }
    if (!m_block.fgAppendText(tail)) {
        m_block.vClear();
        throw BadAllocException("Create Unused Buffer failed", nullptr);
    }
    // Carried text may be empty (a tail that begins with a zero byte) and is carried all the same.
    pcUnusedBuffer = m_block.pcText();
    return true;
}

void WebVTTParser::vClearUnusedBuffer() {
    m_block.vClear();
    pcUnusedBuffer = nullptr;
}

}  // namespace webvtt
