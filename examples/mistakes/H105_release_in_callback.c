/* H105 at call 6, pfnRelease: releases the parser in the callback that it was called for. */
#include "mistake.h"

static const WebvttModuleMethods* methods;
static unsigned int parser;

static void release_at_first_cue(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    methods->pfnRelease(parser);
}

static void play(const WebvttModuleMethods* vtt) {
    methods = vtt;
    parser = open_track(vtt, release_at_first_cue, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
}
