/* H102 at call 1, pfnParse: feeds a handle that it was never given. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    feed(vtt, 0, "WEBVTT\n\n");
}
