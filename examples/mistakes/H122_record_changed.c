/* H122 at call 5, pfnGetParseResult: cuts the line feed off a text that is not its own. */
#include "mistake.h"

static void cut_line_feed(WEBVTT_EVENT_T event, void* tag, void* info) {
    WebvttCueNode* cue = ((WebvttDataInfo*)info)->prCueList;
    ignore_cues(event, tag, info);
    cue->pcText[strlen(cue->pcText) - 1] = '\0';
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, cut_line_feed, NULL);
    feed(vtt, parser, CUE);
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser);
}
