/* H106 at call 6, pfnParse: feeds the parser in its callback. */
#include "mistake.h"

static const WebvttModuleMethods* methods;
static unsigned int parser;

static void feed_on(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    feed(methods, parser, CUE);
}

static void play(const WebvttModuleMethods* vtt) {
    methods = vtt;
    parser = open_track(vtt, feed_on, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
