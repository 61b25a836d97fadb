/* H118 at call 4, unloading: unloads the module and leaves a parser behind. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    open_track(vtt, ignore_cues, NULL);
}
