/*
 * A host in plain C: loads the module, plays a track in small chunks, and compares what it is given
 * with what the track says. It uses the public header as any player would.
 *
 *     plain_host MODULE
 *
 * Ends with 0 when all is well, and with a line on standard error for each thing that is not.
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "quillcaption/quillcaption.h"

static const char kFirstLine[] = "WEBVTT\n";
static const char kTrack[] =
    "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n"
    "\n"
    "1\n"
    "00:01.500 --> 00:03.000\n"
    "Plain & <i>simple</i>\n"
    "\n"
    "00:04.000 --> 00:05.250 line:80%,end align:end size:50% vertical:rl\n"
    "Two\n"
    "lines\n"
    "\n"
    "00:06.000 --> 00:07.000 line:-1 align:left position:25.5%\n"
    "Last\n"
    "\n";

struct Expected {
    double start, end;
    const char* text;
    int line, snap, position, size, align, vertical;
};

/* Nine seconds later than in the track: ten by its map, less one of video time. */
static const struct Expected kCues[] = {
    {10.5, 12.0, "Plain  simple\n", 100, 1, 50, 100, WEBVTT_TEXT_ALIGN_MIDDLE,
     WEBVTT_VERTICAL_NONE},
    {13.0, 14.25, "Two\nlines\n", 80, 0, 100, 50, WEBVTT_TEXT_ALIGN_END,
     WEBVTT_VERTICAL_GROWING_RIGHT},
    {15.0, 16.0, "Last\n", -1, 1, 25, 100, WEBVTT_TEXT_ALIGN_LEFT, WEBVTT_VERTICAL_NONE},
};
static const unsigned int kCueCount = sizeof(kCues) / sizeof(kCues[0]);

static unsigned int cues = 0;
static int mistakes = 0;

static void expect(int condition, const char* what) {
    if (!condition) {
        fprintf(stderr, "cue %u: %s is wrong\n", cues + 1, what);
        ++mistakes;
    }
}

static void compare(const WebvttCueNode* cue, const struct Expected* expected) {
    expect(cue->pcAuxText == NULL, "pcAuxText");
    /* Exact: all of these times are sums of halves and quarters. */
    expect(memcmp(&cue->dStartTime, &expected->start, sizeof(double)) == 0, "dStartTime");
    expect(memcmp(&cue->dEndTime, &expected->end, sizeof(double)) == 0, "dEndTime");
    expect(cue->pcText != NULL && strcmp(cue->pcText, expected->text) == 0, "pcText");
    expect(cue->i4Line == expected->line, "i4Line");
    expect(cue->fgReserved == 0, "fgReserved");
    expect(cue->fgSnapToLines == expected->snap, "fgSnapToLines");
    expect(cue->u1Position == expected->position, "u1Position");
    expect(cue->u1Size == expected->size, "u1Size");
    expect(cue->eTextAlign == expected->align, "eTextAlign");
    expect(cue->eVertical == expected->vertical, "eVertical");
}

static void on_event(WEBVTT_EVENT_T event, void* tag, void* info) {
    const WebvttDataInfo* delivery = info;
    const WebvttCueNode* cue;
    unsigned int count = 0;
    expect(event == WEBVTT_EVENT_PARSE_RESULT, "the event");
    expect(tag == kCues, "the tag");
    for (cue = delivery->prCueList; cue != NULL; cue = cue->prNext) {
        if (cues < kCueCount) {
            compare(cue, &kCues[cues]);
        }
        ++cues;
        ++count;
    }
    expect(delivery->u4CueCount == count, "u4CueCount");
    expect(delivery->u4Reserved == 0, "u4Reserved");
}

/* Chunks of 50 bytes: the map line fits into one, the cues do not. */
static void play(const WebvttModuleMethods* methods, unsigned int parser) {
    const unsigned int length = sizeof(kTrack) - 1;
    unsigned int at, size;
    methods->pfnSetEventNty(parser, (void*)kCues, on_event);
    methods->pfnSetVideoPTS(parser, 90000);
    expect(methods->pfnParse(parser, kFirstLine, sizeof(kFirstLine) - 1) == WEBVTT_RESULT_HEADER,
           "the result of the first line");
    for (at = 0; at < length; at += size) {
        size = length - at < 50 ? length - at : 50;
        expect(methods->pfnParse(parser, kTrack + at, size) == WEBVTT_RESULT_OK, "a result");
        methods->pfnGetParseResult(parser);
    }
}

int main(int argc, char** argv) {
    void* module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    const WebvttModuleInfo* info =
        module != NULL ? dlsym(module, QUILLCAPTION_DESCRIPTOR_SYMBOL) : NULL;
    unsigned int parser = 0;
    if (info == NULL) {
        fprintf(stderr, "plain_host: %s\n", argc == 2 ? dlerror() : "usage: plain_host MODULE");
        return 2;
    }
    expect(info->prMethods == dlsym(module, QUILLCAPTION_METHODS_SYMBOL), "the table");
    expect(info->prMethods->pfnCreate(&parser) == WEBVTT_RESULT_OK, "the result of Create");
    play(info->prMethods, parser);
    info->prMethods->pfnRelease(parser);
    if (cues != kCueCount) {
        fprintf(stderr, "%u cues instead of %u\n", cues, kCueCount);
        ++mistakes;
    }
    return dlclose(module) == 0 && mistakes == 0 ? 0 : 1;
}
