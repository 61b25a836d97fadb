/* H119 at call 5, unloading: unloads the module in the callback, and can't return from there. */
#include "mistake.h"

static void unload(WEBVTT_EVENT_T event, void* tag, void* info) {
    ignore_cues(event, tag, info);
    dlclose(library);
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, unload, NULL);
    vtt->pfnGetParseResult(parser);
}
