/* H109 at call 5, pfnCreate: creates a parser on one thread while another takes cues. */
#include "mistake.h"

#include <pthread.h>

static const WebvttModuleMethods* methods;

static void* create(void* handle) {
    methods->pfnCreate(handle);
    return NULL;
}

/* Waits for the other thread, so that the two calls overlap each time. */
static void wait_for_next_track(WEBVTT_EVENT_T event, void* tag, void* info) {
    pthread_t next_track;
    ignore_cues(event, tag, info);
    pthread_create(&next_track, NULL, create, tag);
    pthread_join(next_track, NULL);
}

static void play(const WebvttModuleMethods* vtt) {
    unsigned int next = 0;
    const unsigned int parser = open_track(vtt, wait_for_next_track, &next);
    methods = vtt;
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
    vtt->pfnRelease(next);
}
