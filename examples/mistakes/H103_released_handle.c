/* H103 at call 5, pfnRelease: releases a parser twice. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    vtt->pfnRelease(parser);
    vtt->pfnRelease(parser);
}
