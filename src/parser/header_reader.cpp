// Header lines, up to the first blank line.
//
// A header line that is split over chunks is joined from the tail of the last chunk and the head
// of this one only: with three chunks or more its earlier pieces are lost. Hosts that cut headers
// so finely see them ignored, and count on it; cue blocks are always kept whole.
#include <cassert>
#include <new>

#include "base/diagnostics.h"
#include "base/errors.h"
#include "base/text.h"
#include "header/region_header.h"
#include "parser/webvtt_parser.h"

namespace webvtt {

int WebVTTParser::ersltParseMetadataHeader() {
    bool map_made = false;
    for (;;) {
        assert(fgHoldsOnlyCarried());
        char* collected = nullptr;
        try {
            if (!fgCollectLine(&collected)) {
                break;
            }
        } catch (const std::bad_alloc&) {
            // Of ours or, where even its text has no room, the standard one.
            return WEBVTT_RESULT_ERROR;
        }
        const std::unique_ptr<char[]> line(collected);
        if (!m_block.fgAppendText(line.get())) {
            print_error("pcDataBuffer == NULL after new");
            return WEBVTT_RESULT_ERROR;
        }
        fgTakeCarried();
        const Block_Guard guard{*this};
        if (m_block.strText().size() == 1) {
            return WEBVTT_RESULT_OK;
        }
        vReadHeaderLine(&map_made);
    }
    fgSaveUnusedBuffer(nullptr);
    return WEBVTT_RESULT_HEADER;
}

void WebVTTParser::vReadHeaderLine(bool* pfgMapMade) {
    const std::string_view header = m_block.strText();
    if (starts_with(header, RegionMetaDataHeader::REGION_SETTING_HEADER->text)) {
        prKeepHeader(std::make_unique<RegionMetaDataHeader>())->vParse(m_block.pcOwned());
    } else if (starts_with(header, TimeStampMetaDataHeader::TIMESTAMP_ID->text) && !*pfgMapMade) {
        // The first map of a call counts; one in a later call takes its place. It is the current
        // map from before it is parsed, and stays it when the parse throws.
        *pfgMapMade = true;
        prTimeStampHeader = prKeepHeader(std::make_unique<TimeStampMetaDataHeader>());
        prTimeStampHeader->vParse(m_block.pcOwned());
    }
}

/// Puts a header into the list that owns it.
template <typename Header>
Header* WebVTTParser::prKeepHeader(std::unique_ptr<Header> header) {
    vecMetaDataHeader.push_back(header.get());
    return header.release();
}

}  // namespace webvtt
