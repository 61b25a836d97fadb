// One parser: one WebVTT track, fed chunk by chunk.
#pragma once

#include <cassert>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "base/target.h"
#include "header/metadata_header.h"
#include "header/timestamp_header.h"
#include "parser/block_buffer.h"
#include "parser/line_finder.h"
#include "parser/record_arena.h"
#include "parser/result_records.h"
#include "quillcaption/quillcaption.h"

namespace webvtt {

class Cue;

/// The parser behind one handle. Its work is spread over one file per task, in reading order:
///
///   parse_driver.cpp    the state machine that a chunk goes through
///   signature.cpp       state 1: the first line
///   header_reader.cpp   state 2: header lines up to the first blank line
///   cue_reader.cpp      state 3: cue blocks
///   line_collector.cpp  lines out of chunks, and what is carried from one chunk to the next
///   cue_delivery.cpp    result records and the host's callback
///
/// A parser reads one track, from the signature on; there is no way back. It owns its carried
/// text, its header objects and its queued records. Calls must not overlap.
class WebVTTParser {
  public:
    WebVTTParser() = default;
    WebVTTParser(const WebVTTParser&) = delete;
    WebVTTParser& operator=(const WebVTTParser&) = delete;
    /// Frees everything, records that were not delivered included.
    virtual ~WebVTTParser();

    /// Feeds one chunk, which is read during the call only.
    /// @return 0 the chunk is done, or the track was rejected earlier; 1 bad arguments, or the
    ///         chunk ended inside the header section; 2 not a WebVTT track, or out of memory
    /// @throws std::out_of_range from a map header or a "line" setting
    /// @throws std::bad_alloc    memory ran out where no result says so
    int rsltParse(const void* pvData, unsigned int u4Size);

    /// The workers of states 1 to 3. 0: done with the state's work (state 3: with the chunk);
    /// 1: the chunk ended (state 3: one block was handled, call again); 2: error.
    int ersltCheckValidation();
    int ersltParseMetadataHeader();
    int ersltParseCue();

    /// The sentinel in front of the first queued record.
    const WebvttCueNode* prGetParseResult() const { return &tResultHead; }

    // ---- Lines (line_collector.cpp) ----

    /// Installs a chunk; it is not copied.
    void vSetParsingBuffer(char* pcBuf, unsigned int u4Len);
    bool fgIsBufferAvailable() { return pcParsingBuffer != nullptr && u4ParsingBufferLen != 0; }

    /// Hands out the next complete line: its bytes, one line feed whatever ended it, and a zero.
    /// The caller frees it with vDestoryLine. False when the chunk holds no complete line.
    /// @param ppcLine must point at null
    /// @throws InvalidArgumentException it does not
    /// @throws BadAllocException        memory ran out; nothing was consumed
    bool fgCollectLine(char** ppcLine);

    /// Frees a line. Does not set the pointer to null.
    void vDestoryLine(char** ppcLine);

    /// Replaces the carried text by the prefix (or nothing, for null) and the chunk's unread tail.
    /// False when that is nothing at all; no text is carried then.
    /// @throws BadAllocException memory ran out; no text is carried then
    bool fgSaveUnusedBuffer(const char* pcPrefix);
    void vClearUnusedBuffer();

    // ---- Delivery (cue_delivery.cpp) ----

    /// Queues a record of a parsed cue.
    /// @throws BadAllocException memory ran out; nothing is queued
    void vAppendNewCue(const Cue* prCue);
    /// Calls the callback once with everything queued, then frees it. One must be registered.
    void vGetParseResult();
    /// A null pfnNotify changes nothing, the tag included.
    void vSetWebvttEventNty(void* pvTag, void (*pfnNotify)(WEBVTT_EVENT_T, void*, void*));
    /// @param u4Pts in ticks of 90 kHz; for the cues parsed from now on
    void vSetVideoPTS(unsigned long u4Pts);

  private:
    enum Parse_State : std::int32_t {
        PARSE_INITIAL = 0,
        PARSE_SIGNATURE = 1,
        PARSE_HEADER = 2,
        PARSE_CUES = 3,
        PARSE_REJECTED = 4
    };

    enum class Block_Result { kComplete, kIncomplete, kFailed };

    /// Empties the block when its reader is done with it, also when an exception leaves the module.
    struct Block_Guard {
        WebVTTParser& parser;
        ~Block_Guard() { parser.vClearUnusedBuffer(); }
    };

    WebvttCueNode tResultHead;                   // sentinel
    WebvttCueNode* prResultTail = &tResultHead;  // last record, or the sentinel
    Parse_State eParseState = PARSE_INITIAL;
    char* pcParsingBuffer = nullptr;  // next unread byte of the chunk; null when exhausted
    unsigned int u4ParsingBufferLen = 0;
    bool fgPendingCR = false;  // a chunk ended in a CR whose LF may begin a later one
    std::vector<MetaDataHeader*> vecMetaDataHeader;  // owned
    char* pcUnusedBuffer = nullptr;  // carried text, in m_block; null when there is none
    unsigned int u4LineCount = 0;    // lines collected from the track so far
    unsigned int u4ParsedCueCount = 0;
    unsigned int u4FailedCueCount = 0;
    unsigned int u4VideoPts = 0;  // ticks of 90 kHz
    void (*pfnEventNotify)(WEBVTT_EVENT_T, void*, void*) = nullptr;
    void* pvEventTag = nullptr;
    TimeStampMetaDataHeader* prTimeStampHeader = nullptr;  // the current map, in the list above

    int rsltParseCues();
    Outcome eParseCue(int* result);
    void vReadHeaderLine(bool* pfgMapMade);
    template <typename Header>
    Header* prKeepHeader(std::unique_ptr<Header> header);
    Block_Result eReadBlock(bool* pfgHasMarkup);
    bool fgFindLines(unsigned uMost, ChunkLines* lines);
    void vConsumeLines(const ChunkLines& lines);
    void vExhaustBuffer();
    Outcome eCarryTail();
    void vCarryBlock();
    bool fgTakeCarried();
    bool fgHoldsOnlyCarried();
    Outcome eAppendCue(const Cue& cue, std::string_view text);
    void vFreeQueue();

    BlockBuffer m_block;  // carried text, then the block or header line it grows into
    LineFinder m_lines;
    RecordArena m_records;  // the queued ones
};

// Inline, as every line of a track comes through these.

/// What m_block holds is now carried text.
inline void WebVTTParser::vCarryBlock() {
    pcUnusedBuffer = m_block.pcOwned();
}

/// Carried text, if there is any, is now the front of what is being read; it stays in m_block.
inline bool WebVTTParser::fgTakeCarried() {
    const bool carried = pcUnusedBuffer != nullptr;
    pcUnusedBuffer = nullptr;
    return carried;
}

/// Whether nothing but carried text is in m_block, as it is in front of every block and line.
inline bool WebVTTParser::fgHoldsOnlyCarried() {
    return pcUnusedBuffer != nullptr ? pcUnusedBuffer == m_block.pcOwned() : m_block.fgIsEmpty();
}

/// Looks for the next complete lines without consuming them. Notes a CR that ends the chunk.
inline bool WebVTTParser::fgFindLines(unsigned uMost, ChunkLines* lines) {
    if (!fgIsBufferAvailable() || !m_lines.find(pcParsingBuffer, uMost, lines)) {
        return false;
    }
    if (lines->ends_in_open_cr) {
        fgPendingCR = true;
    }
    return true;
}

inline void WebVTTParser::vConsumeLines(const ChunkLines& lines) {
    if (lines.consumed < u4ParsingBufferLen) {
        pcParsingBuffer += lines.consumed;
        u4ParsingBufferLen -= lines.consumed;
    } else {
        vExhaustBuffer();
    }
    u4LineCount += lines.count + (lines.blank_follows ? 1 : 0);
}

}  // namespace webvtt
