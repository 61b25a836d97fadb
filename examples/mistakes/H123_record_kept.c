/* H123 at call 5, pfnGetParseResult: keeps a record, and shows it when the callback is over. */
#include "mistake.h"

static const WebvttCueNode* shown;

static void keep(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    shown = ((const WebvttDataInfo*)info)->prCueList->prNext;
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, keep, NULL);
    feed(vtt, parser, CUE CUE CUE);
    vtt->pfnGetParseResult(parser);
    printf("%.3f\n", shown->dStartTime);
    vtt->pfnRelease(parser);
}
