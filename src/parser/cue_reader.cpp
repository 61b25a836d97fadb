// Cue blocks: at most ten lines, up to the next blank line.
//
// A longer block is cut: its first ten lines are one cue, and what follows is a block of its own,
// which normally fails for want of a timing line.
#include <cassert>

#include "base/byte_finder.h"
#include "base/diagnostics.h"
#include "base/errors.h"
#include "base/fast_paths.h"
#include "cue/cue.h"
#include "parser/webvtt_parser.h"

namespace webvtt {
namespace {

constexpr unsigned kMostLines = ChunkLines::kMost;

bool has_markup(std::string_view text) {
    const char* const end = text.data() + text.size();
    return find_byte(text.data(), end, '<') != end || find_byte(text.data(), end, '&') != end;
}

/// As eParseForText, in the build that has no fast ways; a template, so that others are built
/// without.
/// @param block zero-terminated
template <typename AnyCue>
Outcome parse_to_tree(AnyCue& cue, std::string_view block) {
    try {
        const bool parsed = cue.fgParse(block.data(), static_cast<unsigned>(block.size()));
        return parsed ? Outcome::kDone : Outcome::kRejected;
    } catch (const InvalidArgumentException&) {
        return Outcome::kEmptyInput;
    } catch (const BadAllocException&) {
        return Outcome::kNoNode;
    }
}

}  // namespace

int WebVTTParser::ersltParseCue() {
    int result = 0;
    throw_unless_read(eParseCue(&result));
    return result;
}

/// As ersltParseCue, which throws what is an error here.
/// @param result is that of ersltParseCue, unless there was an error
Outcome WebVTTParser::eParseCue(int* result) {
    bool markup = false;
    switch (eReadBlock(&markup)) {
        case Block_Result::kFailed:
            *result = WEBVTT_RESULT_ERROR;
            return Outcome::kRejected;
        case Block_Result::kIncomplete:
            *result = 0;
            return eCarryTail();
        case Block_Result::kComplete:
            *result = 1;
            break;
    }
    const Block_Guard guard{*this};
    if (markup && !m_block.fgOwn()) {
        return Outcome::kNoBlock;
    }
    Cue cue;
    Outcome outcome = Outcome::kRejected;
    if constexpr (kFastPaths) {
        outcome = cue.eParseForText(m_block.strText(), markup ? m_block.pcOwned() : nullptr);
    } else {
        outcome = parse_to_tree(cue, m_block.strText());
    }
    if (outcome == Outcome::kDone) {
        ++u4ParsedCueCount;
        outcome = eAppendCue(
            cue, kFastPaths ? cue.strPlainText() : std::string_view(cue.strGetCueContent().text));
    } else if (outcome == Outcome::kRejected) {
        print_error("Cue Parse Failed!!!!!!!!!!!!!!!!!!!!!!!!!!!!!");
        ++u4FailedCueCount;
    }
    return outcome;
}

/// Appends lines to the carried text until the block is complete or the chunk has no more lines.
/// @param pfgHasMarkup whether there is a "<" or a "&" in a complete block
WebVTTParser::Block_Result WebVTTParser::eReadBlock(bool* pfgHasMarkup) {
    assert(fgHoldsOnlyCarried());
    const bool carried = fgTakeCarried();
    const std::size_t carried_size = m_block.strText().size();
    const unsigned carried_line_feeds = m_block.uLineFeeds();

    const char* const begin = pcParsingBuffer;
    unsigned count = carried_line_feeds;
    bool content = carried;
    bool at_line_start = !carried || m_block.fgEndsWithLineFeed();
    ChunkLines lines;
    // Carried text may hold ten lines or more; then one line completes the block.
    unsigned most = kFastPaths && count < kMostLines ? kMostLines - count : 1;
    while (fgFindLines(most, &lines)) {
        const bool blank = lines.is_blank() && at_line_start;
        // A blank line behind carried text that ends inside a line completes that line.
        if (!blank) {
            if (!m_block.fgAppendLines(lines)) {
                if (lines.count > 1) {
                    most = 1;  // one of them may still find room, and the next one is to blame
                    m_lines.look_again();
                    continue;
                }
                print_error("Alloc %d B memory failed", static_cast<int>(lines.bytes.size() + 1));
                m_block.vTruncate(carried_size, carried_line_feeds);
                if (carried) {
                    vCarryBlock();
                }
                return Block_Result::kFailed;
            }
            content = true;
            at_line_start = true;
            count += lines.count;
            most -= most > lines.count ? lines.count : 0;
        }
        const bool complete = count >= kMostLines || lines.blank_follows || (blank && content);
        if (complete) {
            *pfgHasMarkup = (carried && has_markup(m_block.strText().substr(0, carried_size))) ||
                            m_lines.has_markup(begin, lines.bytes.data() + lines.consumed);
        }
        vConsumeLines(lines);
        if (complete) {
            return Block_Result::kComplete;
        }
    }
    return Block_Result::kIncomplete;
}

}  // namespace webvtt
