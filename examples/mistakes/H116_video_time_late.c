/* H116 at call 5, pfnSetVideoPTS: sets the video time when the cues are complete already. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnSetVideoPTS(parser, 324000000);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
