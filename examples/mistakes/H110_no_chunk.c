/* H110 at call 4, pfnParse: feeds what a socket had, which was nothing. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    vtt->pfnParse(parser, "", 0);
    vtt->pfnRelease(parser);
}
