/* H115 at call 6, pfnRelease: does not end the track with line feeds, so that its last cue is lost.
 */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    feed(vtt, parser, CUE "00:03.000 --> 00:04.000\nThe end");
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
