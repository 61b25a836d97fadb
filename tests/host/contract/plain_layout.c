/*
 * The layout that a C compiler gives the public header's structs, held against the numbers of the
 * binary contract, and against a record of the module, field by field and byte by byte.
 *
 *     plain_layout MODULE
 */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "quillcaption/quillcaption.h"

static int mistakes = 0;

static void expect(int condition, const char* what) {
    if (!condition) {
        fprintf(stderr, "%s is wrong\n", what);
        ++mistakes;
    }
}

struct Field {
    size_t offset, wanted_offset, size, wanted_size;
    const char* name;
};

#define FIELD(type, field, offset, size) \
    offsetof(type, field), offset, sizeof(((type*)0)->field), size, #type "::" #field

static const struct Field kFields[] = {
    {FIELD(WebvttCueNode, pcAuxText, 0, 4)},
    {FIELD(WebvttCueNode, dStartTime, 8, 8)},
    {FIELD(WebvttCueNode, dEndTime, 16, 8)},
    {FIELD(WebvttCueNode, pcText, 24, 4)},
    {FIELD(WebvttCueNode, i4Line, 28, 4)},
    {FIELD(WebvttCueNode, fgReserved, 32, 1)},
    {FIELD(WebvttCueNode, fgSnapToLines, 33, 1)},
    {FIELD(WebvttCueNode, u1Position, 34, 1)},
    {FIELD(WebvttCueNode, u1Size, 35, 1)},
    {FIELD(WebvttCueNode, eTextAlign, 36, 4)},
    {FIELD(WebvttCueNode, eVertical, 40, 4)},
    {FIELD(WebvttCueNode, prNext, 44, 4)},
    {FIELD(WebvttDataInfo, prCueList, 0, 4)},
    {FIELD(WebvttDataInfo, u4CueCount, 4, 4)},
    {FIELD(WebvttDataInfo, u4Reserved, 8, 4)},
    {FIELD(WebvttModuleMethods, pfnCreate, 0, 4)},
    {FIELD(WebvttModuleMethods, pfnRelease, 4, 4)},
    {FIELD(WebvttModuleMethods, pfnParse, 8, 4)},
    {FIELD(WebvttModuleMethods, pfnSetEventNty, 12, 4)},
    {FIELD(WebvttModuleMethods, pfnGetParseResult, 16, 4)},
    {FIELD(WebvttModuleMethods, pfnSetVideoPTS, 20, 4)},
    {FIELD(WebvttModuleInfo, u4LoaderWord, 0, 4)},
    {FIELD(WebvttModuleInfo, pcModuleName, 4, 4)},
    {FIELD(WebvttModuleInfo, prMethods, 8, 4)},
    {FIELD(WebvttModuleInfo, au1Reserved, 12, 132)},
};

static void check_fields(void) {
    size_t i;
    for (i = 0; i < sizeof(kFields) / sizeof(kFields[0]); ++i) {
        expect(kFields[i].offset == kFields[i].wanted_offset, kFields[i].name);
        expect(kFields[i].size == kFields[i].wanted_size, kFields[i].name);
    }
    expect(sizeof(WebvttCueNode) == 48, "the size of WebvttCueNode");
    expect(_Alignof(WebvttCueNode) == 8, "the alignment of WebvttCueNode");
    expect(sizeof(WebvttDataInfo) == 12, "the size of WebvttDataInfo");
    expect(sizeof(WebvttModuleMethods) == 24, "the size of WebvttModuleMethods");
    expect(sizeof(WebvttModuleInfo) == 144, "the size of WebvttModuleInfo");
    expect(sizeof(WEBVTT_EVENT_T) == 4, "the size of WEBVTT_EVENT_T");
}

/* A cue with another value in every field. */
static const char kTrack[] =
    "WEBVTT\n\n00:01.500 --> 00:03.250 line:7% position:25% size:50% align:right "
    "vertical:rl\nx\n\n";

static int bytes_are(const void* record, size_t offset, const void* wanted, size_t size) {
    return memcmp((const char*)record + offset, wanted, size) == 0;
}

static int deliveries = 0;

static void on_event(WEBVTT_EVENT_T event, void* tag, void* info) {
    const double start = 1.5, end = 3.25;
    const int32_t line = 7, align = WEBVTT_TEXT_ALIGN_RIGHT;
    const int32_t vertical = WEBVTT_VERTICAL_GROWING_RIGHT;
    const uint8_t bytes[] = {0, 0, 25, 50}; /* fgReserved, fgSnapToLines, u1Position, u1Size */
    const char zeros[4] = {0, 0, 0, 0};
    const WebvttDataInfo* delivery = info;
    const WebvttCueNode* cue = delivery->prCueList;
    (void)event;
    (void)tag;
    ++deliveries;
    expect(bytes_are(info, 0, &cue, sizeof(cue)), "the list in the info block");
    expect(delivery->u4CueCount == 1 && cue != NULL, "the number of cues");
    if (cue == NULL) {
        return;
    }
    expect((uintptr_t)cue % 8 == 0, "the address of the record");
    expect(bytes_are(cue, 0, zeros, 4), "pcAuxText at 0");
    expect(bytes_are(cue, 8, &start, 8), "dStartTime at 8");
    expect(bytes_are(cue, 16, &end, 8), "dEndTime at 16");
    expect(bytes_are(cue, 24, &cue->pcText, 4) && strcmp(cue->pcText, "x\n") == 0, "pcText at 24");
    expect(bytes_are(cue, 28, &line, 4), "i4Line at 28");
    expect(bytes_are(cue, 32, bytes, 4), "the bytes at 32 to 35");
    expect(bytes_are(cue, 36, &align, 4), "eTextAlign at 36");
    expect(bytes_are(cue, 40, &vertical, 4), "eVertical at 40");
    expect(bytes_are(cue, 44, zeros, 4), "prNext at 44");
}

int main(int argc, char** argv) {
    void* module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    const WebvttModuleInfo* info =
        module != NULL ? dlsym(module, QUILLCAPTION_DESCRIPTOR_SYMBOL) : NULL;
    unsigned int parser = 0;
    if (info == NULL) {
        fprintf(stderr, "plain_layout: %s\n", argc == 2 ? dlerror() : "usage: plain_layout MODULE");
        return 2;
    }
    check_fields();
    expect(info->u4LoaderWord == 1, "the first word of the descriptor");
    expect(strcmp(info->pcModuleName, "quillcaption.so") == 0, "the name in the descriptor");
    expect(info->prMethods->pfnCreate(&parser) == WEBVTT_RESULT_OK, "the result of Create");
    info->prMethods->pfnSetEventNty(parser, NULL, on_event);
    info->prMethods->pfnParse(parser, kTrack, sizeof(kTrack) - 1);
    info->prMethods->pfnGetParseResult(parser);
    info->prMethods->pfnRelease(parser);
    expect(deliveries == 1, "the number of deliveries");
    return mistakes == 0 ? 0 : 1;
}
