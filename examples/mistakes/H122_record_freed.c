/* H122 at call 5, pfnGetParseResult: frees a text that is the module's. */
#include "mistake.h"

#include <stdlib.h>

static void free_text(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    free(((WebvttDataInfo*)info)->prCueList->pcText);
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, free_text, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
