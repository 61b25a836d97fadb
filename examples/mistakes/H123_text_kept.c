/* H123 at call 5, pfnGetParseResult: keeps the pointer to a text in place of the text. */
#include "mistake.h"

static const char* shown;

static void keep(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    shown = ((const WebvttDataInfo*)info)->prCueList->pcText;
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, keep, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
    printf("%s", shown);
    vtt->pfnRelease(parser);
}
