/* H104 at call 8, pfnParse: feeds a released handle, whose number is another parser's by now. */
#include "mistake.h"

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int news = open_track(vtt, ignore_cues, NULL);
    vtt->pfnRelease(news);
    const unsigned int film = open_track(vtt, ignore_cues, NULL);
    feed(vtt, news, CUE);
    vtt->pfnRelease(film);
}
