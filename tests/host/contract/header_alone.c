/* The public header is all that a host needs, in C11: nothing is included before it. */
#include "quillcaption/quillcaption.h"
/* Twice does no harm. */
#include "quillcaption/quillcaption.h"

/* Its constants are constant expressions. */
_Static_assert(WEBVTT_RESULT_OK == 0 && WEBVTT_RESULT_HEADER == 1 && WEBVTT_RESULT_ERROR == 2,
               "results");
_Static_assert(WEBVTT_EVENT_PARSE_RESULT == 0, "events");
_Static_assert(WEBVTT_TEXT_ALIGN_START == 0 && WEBVTT_TEXT_ALIGN_MIDDLE == 1 &&
                   WEBVTT_TEXT_ALIGN_END == 2 && WEBVTT_TEXT_ALIGN_LEFT == 3 &&
                   WEBVTT_TEXT_ALIGN_RIGHT == 4,
               "text alignments");
_Static_assert(WEBVTT_VERTICAL_NONE == 0 && WEBVTT_VERTICAL_GROWING_LEFT == 1 &&
                   WEBVTT_VERTICAL_GROWING_RIGHT == 2,
               "writing directions");
_Static_assert(sizeof(QUILLCAPTION_VERSION) > 1 && sizeof(QUILLCAPTION_DESCRIPTOR_SYMBOL) > 1 &&
                   sizeof(QUILLCAPTION_METHODS_SYMBOL) > 1,
               "texts");

/* A callback and calls through the table, as a host writes them. */
static void count_cues(WEBVTT_EVENT_T event, void* tag, void* info) {
    *(uint32_t*)tag += event == WEBVTT_EVENT_PARSE_RESULT ? ((WebvttDataInfo*)info)->u4CueCount : 0;
}

uint32_t play(const WebvttModuleInfo* module, const char* track, unsigned int size);

uint32_t play(const WebvttModuleInfo* module, const char* track, unsigned int size) {
    const WebvttModuleMethods* methods = module->prMethods;
    unsigned int parser;
    uint32_t count = 0;
    if (methods->pfnCreate(&parser) != WEBVTT_RESULT_OK) {
        return 0;
    }
    methods->pfnSetEventNty(parser, &count, count_cues);
    methods->pfnSetVideoPTS(parser, 90000);
    if (methods->pfnParse(parser, track, size) != WEBVTT_RESULT_ERROR) {
        methods->pfnGetParseResult(parser);
    }
    methods->pfnRelease(parser);
    return count;
}
