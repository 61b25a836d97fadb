/*
 * A first try at a host, which shows captions and still makes three mistakes. The guard finds them
 * (docs/guard.md), and samples/three-mistakes.log is what it recorded:
 *
 *     QUILLCAPTION_GUARD_LOG=session.log three_mistakes quillcaption-guard.so
 */
#include "mistakes/mistake.h"

static void show(WEBVTT_EVENT_T event, void* tag, void* info) {
    const WebvttCueNode* cue = ((const WebvttDataInfo*)info)->prCueList;
    (void)event, (void)tag;
    for (; cue != NULL; cue = cue->prNext) {
        printf("%.3f to %.3f: %s", cue->dStartTime, cue->dEndTime, cue->pcText);
    }
}

static void play(const WebvttModuleMethods* vtt) {
    const unsigned int parser = open_track(vtt, show, NULL);
    feed(vtt, parser, "00:10.000 --> 00:12.000\nThe ferry is late again.\n\n");
    vtt->pfnSetVideoPTS(parser, 10 * 90000); /* too late for the cue above: H116 */
    vtt->pfnGetParseResult(parser);
    feed(vtt, parser, "00:13.000 --> 00:15.000\nIt waits for the fog");
    feed(vtt, parser, " to decide.\n");
    feed(vtt, parser, ""); /* no way to say that the track has ended: H110 */
    vtt->pfnGetParseResult(parser);
    vtt->pfnRelease(parser); /* with the second cue unfinished: H115 */
}
