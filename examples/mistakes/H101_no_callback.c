/* H101 at call 3, pfnGetParseResult: asks for cues before it has registered a callback. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    unsigned int parser = 0;
    vtt->pfnCreate(&parser);
    feed(vtt, parser, "WEBVTT\n\n");
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
