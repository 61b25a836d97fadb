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
    m_lines.start(pcBuf + (pcBuf != nullptr ? u4Len : 0));
}

void WebVTTParser::vExhaustBuffer() {
    print_error("Buffer Exhausted");
    vSetParsingBuffer(nullptr, 0);
}

bool WebVTTParser::fgCollectLine(char** ppcLine) {
    if (*ppcLine != nullptr) {
        throw InvalidArgumentException("Input pcLine Shall be empty", nullptr);
    }
    ChunkLines line;
    if (!fgFindLines(1, &line)) {
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
    vConsumeLines(line);
    return true;
}

void WebVTTParser::vDestoryLine(char** ppcLine) {
    delete[] ppcLine[0];
}

bool WebVTTParser::fgSaveUnusedBuffer(const char* pcPrefix) {
    vClearUnusedBuffer();
    if (pcPrefix != nullptr && !m_block.fgAppendText(pcPrefix)) {
        throw_failure(Outcome::kNoCarried);
    }
    return throw_unless_read(eCarryTail());
}

/// Appends the chunk's unread tail to the text in m_block and carries the whole to the next call.
Outcome WebVTTParser::eCarryTail() {
    if (m_block.fgIsEmpty() && u4ParsingBufferLen == 0) {
        return Outcome::kRejected;
    }
    std::string_view tail;
    if (fgIsBufferAvailable()) {
        tail = m_lines.tail(pcParsingBuffer);
    }
    if (!m_block.fgAppendText(tail)) {
        m_block.vClear();
        return Outcome::kNoCarried;
    }
    // Carried text may be empty (a tail that begins with a zero byte) and is carried all the same.
    vCarryBlock();
    return Outcome::kDone;
}

void WebVTTParser::vClearUnusedBuffer() {
    m_block.vClear();
    fgTakeCarried();
}

}  // namespace webvtt
