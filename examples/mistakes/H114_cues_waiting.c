/* H114 at call 7, pfnRelease: does not ask once more after the last chunk. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
    feed(vtt, parser, CUE);
    vtt->pfnRelease(parser);
}
