/* H107 at call 6, pfnGetParseResult: asks for cues in the callback that delivers them. */
#include "mistake.h"

static const WebvttModuleMethods* methods;
static unsigned int parser;

static void ask_for_more(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    methods->pfnGetParseResult(parser);
}

static void play(const WebvttModuleMethods* vtt) {
    methods = vtt;
    parser = open_track(vtt, ask_for_more, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
