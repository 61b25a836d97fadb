/* H112 at call 4, pfnParse: goes on with a track that was refused. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    unsigned int parser = 0;
    vtt->pfnCreate(&parser);
    vtt->pfnSetEventNty(parser, NULL, ignore_cues);
    feed(vtt, parser, "1\n00:00:01,000 --> 00:00:02,000\nHello\n\n");
    feed(vtt, parser, "2\n00:00:03,000 --> 00:00:04,000\nHello\n\n");
    vtt->pfnRelease(parser);
}
