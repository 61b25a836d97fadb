/* H113 at call 5, pfnRelease: never asks for the cues, and wonders that the callback is not called.
 */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnRelease(parser);
}
