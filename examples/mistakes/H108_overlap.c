/* H108 at call 5, pfnSetVideoPTS: sets the video time on one thread while another takes cues. */
#include "mistake.h"

#include <pthread.h>

static const WebvttModuleMethods* methods;
static unsigned int parser;

static void* set_time(void* unused) {
    methods->pfnSetVideoPTS(parser, 90000);
    return unused;
}

/* Waits for the other thread, so that the two calls overlap each time. */
static void wait_for_clock(WEBVTT_EVENT_T event, void* tag, void* info) {
    pthread_t clock;
    ignore_cues(event, tag, info);
    pthread_create(&clock, NULL, set_time, NULL);
    pthread_join(clock, NULL);
}

static void play(const WebvttModuleMethods* vtt) {
    methods = vtt;
    parser = open_track(vtt, wait_for_clock, NULL);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
