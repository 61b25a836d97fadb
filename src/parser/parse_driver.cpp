// The state machine that a chunk goes through.
#include "base/diagnostics.h"
#include "parser/webvtt_parser.h"

namespace webvtt {

WebVTTParser::~WebVTTParser() {
    vFreeQueue();
    for (MetaDataHeader* header : vecMetaDataHeader) {
        delete header;
    }
}

int WebVTTParser::rsltParse(const void* pvData, unsigned int u4Size) {
    if (u4Size == 0 || pvData == nullptr) {
        // Printed as signed: three thousand million bytes come out negative.
        print_error("Invalid input, buffer size %d", static_cast<int>(u4Size));
        return WEBVTT_RESULT_HEADER;
    }
    // The chunk is only read.
    char* chunk = const_cast<char*>(static_cast<const char*>(pvData));
    if (fgPendingCR && *chunk == '\n') {
        // The line feed belongs to a carriage return that ended an earlier chunk. The flag outlives
        // chunks that do not begin with a line feed, on purpose.
        ++chunk;
        --u4Size;
        fgPendingCR = false;
    }
    vSetParsingBuffer(chunk, u4Size);

    if (eParseState == PARSE_INITIAL) {
        eParseState = PARSE_SIGNATURE;
    }
    if (eParseState == PARSE_SIGNATURE) {
        if (ersltCheckValidation() != WEBVTT_RESULT_OK) {
            print_error("It is NOT a valid WebVTT track, Parse abort!");
            eParseState = PARSE_REJECTED;
            return WEBVTT_RESULT_ERROR;
        }
        eParseState = PARSE_HEADER;
    }
    if (eParseState == PARSE_HEADER) {
        const int result = ersltParseMetadataHeader();
        if (result == WEBVTT_RESULT_HEADER) {
            return result;
        }
        eParseState = PARSE_CUES;
        if (result != WEBVTT_RESULT_OK) {
            print_error("Parse Meta Header Failed, ignore and continue parse");
            return result;
        }
    }
    return eParseState == PARSE_CUES ? rsltParseCues() : WEBVTT_RESULT_OK;
}

int WebVTTParser::rsltParseCues() {
    int result = 0;
    for (;;) {
        int block_result = 0;
        switch (eParseCue(&block_result)) {
            case Outcome::kDone:
            case Outcome::kRejected:
                result = block_result;
                break;
            case Outcome::kEmptyInput:
                // The result stays that of the block before: behind a block of the same chunk the
                // next block follows, but a chunk whose first block ends up here is given up.
                print_error("Error occured at LINE %d", static_cast<int>(u4LineCount));
                break;
            default:
                print_error("out of memory");
                return WEBVTT_RESULT_ERROR;
        }
        if (result == 0) {
            print_error("FINISHED");
            return WEBVTT_RESULT_OK;
        }
        if (result != 1) {
            print_error("return result %d", result);
            return result;
        }
    }
}

}  // namespace webvtt
