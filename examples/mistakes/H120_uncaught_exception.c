/* H120 at call 4, pfnParse: feeds a track from C, which can't catch what a bad cue throws. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    feed(vtt, parser, "00:01.000 --> 00:02.000 line:-\nHello\n\n");
    vtt->pfnRelease(parser);
}
