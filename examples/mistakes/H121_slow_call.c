/* H121 at call 4, pfnGetParseResult: renders in the callback. Run it with
 * QUILLCAPTION_GUARD_SLOW_MS=400. */
#include "mistake.h"

#include <time.h>

static void render(WEBVTT_EVENT_T event, void* tag, void* info) {
    const struct timespec frame = {0, 600000000};
    ignore_cues(event, tag, info);
    nanosleep(&frame, NULL);
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, render, NULL);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
