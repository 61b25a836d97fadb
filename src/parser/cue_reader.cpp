// Cue blocks: at most ten lines, up to the next blank line.
//
// A longer block is cut: its first ten lines are one cue, and what follows is a block of its own,
// which normally fails for want of a timing line.
#include "base/diagnostics.h"
#include "cue/cue.h"
#include "parser/webvtt_parser.h"

namespace webvtt {
namespace {

constexpr unsigned kMostLines = 10;

}  // namespace

int WebVTTParser::ersltParseCue() {
    switch (fgBorrowBlock() ? Block_Result::kComplete : eReadBlock()) {
        case Block_Result::kFailed:
            return WEBVTT_RESULT_ERROR;
        case Block_Result::kIncomplete:
            fgCarryTail();
            return 0;
        case Block_Result::kComplete:
            break;
    }
    const Block_Guard guard{*this};
    Cue cue;
    if (cue.fgParseForText(m_block.strText(), m_block.fgMayHaveMarkup(), m_joined_text)) {
        ++u4ParsedCueCount;
        vAppendNewCue(&cue);
    } else {
        print_error("Cue Parse Failed!!!!!!!!!!!!!!!!!!!!!!!!!!!!!");
        ++u4FailedCueCount;
    }
    return 1;
}

/// Takes the next block as it lies in the chunk, which nearly every block allows.
inline bool WebVTTParser::fgBorrowBlock() {
    ChunkBlock block;
    if (pcUnusedBuffer != nullptr || !fgIsBufferAvailable() ||
        !m_lines.find_block(pcParsingBuffer, kMostLines, &block)) {
        return false;
    }
    m_block.vBorrow(block);
    vConsume(block.consumed, block.line_feeds + block.blank_lines);
    return true;
}

/// Appends lines to the carried text until the block is complete or the chunk has no more lines.
WebVTTParser::Block_Result WebVTTParser::eReadBlock() {
    const bool carried = fgTakeCarried();
    const std::size_t carried_size = m_block.strText().size();
    const unsigned carried_line_feeds = m_block.uLineFeeds();

    unsigned lines = carried_line_feeds;
    bool content = carried;
    bool at_line_start = !carried || m_block.fgEndsWithLineFeed();
    ChunkLine line;
    while (fgFindLine(&line)) {
        if (line.is_blank() && at_line_start) {
            vConsumeLine(line);
            if (content) {
                return Block_Result::kComplete;
            }
            continue;  // blank lines before a block
        }
        // A blank line behind carried text that ends inside a line completes that line.
        if (!m_block.fgAppendLine(line)) {
            print_error("Alloc %d B memory failed", static_cast<int>(line.bytes.size() + 1));
            m_block.vTruncate(carried_size, carried_line_feeds);
            if (carried) {
                vCarryBlock();
            }
            return Block_Result::kFailed;
        }
        vConsumeLine(line);
        content = true;
        at_line_start = true;
        if (++lines >= kMostLines) {
            return Block_Result::kComplete;
        }
    }
    return Block_Result::kIncomplete;
}

}  // namespace webvtt
