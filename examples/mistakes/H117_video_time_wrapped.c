/* H117 at call 5, pfnSetVideoPTS: passes on 32 bits of a clock that has 33. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, ignore_cues, NULL);
    const unsigned long long before = 4294800000, after = before + 10 * 90000;
    vtt->pfnSetVideoPTS(parser, (unsigned long)before);
    vtt->pfnSetVideoPTS(parser, (unsigned long)(after & 0xFFFFFFFF));
    vtt->pfnRelease(parser);
}
