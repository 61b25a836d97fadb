/* H111 at call 3, pfnParse: feeds the first bytes that came, which end within the first line. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    unsigned int parser = 0;
    vtt->pfnCreate(&parser);
    vtt->pfnSetEventNty(parser, NULL, ignore_cues);
    feed(vtt, parser, "WEBV");
    vtt->pfnRelease(parser);
}
