/*
 * A host in plain C: plays a track through the module and prints its captions.
 *
 *     host MODULE TRACK
 *
 * Ends with 0, with 1 when the track was refused or memory ran out, with 2 when the command line
 * or the file is at fault, with 3 when the module is. docs/host-guide.md explains it piece by
 * piece.
 */
#include <ctype.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "guarded_parse.h"

enum { kDone = 0, kRefused = 1, kBadFile = 2, kBadModule = 3 };
enum { kChunk = 4096, kLongestTrack = 16 << 20 };

/* A copy of what we need of a cue: the module's record is gone when the callback returns. */
struct Caption {
    double start, end;
    struct Caption* next;
    char text[];
};

struct Captions {
    struct Caption* first;
    struct Caption** end; /* where the next one is hung in */
    int out_of_memory;
};

/* The callback. The module is still at work: copy, and do nothing else. */
static void take_cues(WEBVTT_EVENT_T event, void* tag, void* data) {
    struct Captions* captions = tag;
    const WebvttCueNode* cue = ((const WebvttDataInfo*)data)->prCueList;
    if (event != WEBVTT_EVENT_PARSE_RESULT) {
        return;
    }
    for (; cue != NULL; cue = cue->prNext) {
        const size_t text_size = strlen(cue->pcText) + 1;
        struct Caption* copy = malloc(sizeof *copy + text_size);
        if (copy == NULL) {
            captions->out_of_memory = 1;
            return;
        }
        copy->start = cue->dStartTime;
        copy->end = cue->dEndTime;
        copy->next = NULL;
        memcpy(copy->text, cue->pcText, text_size);
        *captions->end = copy;
        captions->end = &copy->next;
    }
}

/* Feeds a chunk, if any, and takes the cues that it completed. Returns guarded_parse's result. */
static int feed(const WebvttModuleMethods* vtt, unsigned int parser, const char* data,
                size_t size) {
    const int result = size > 0 ? guarded_parse(vtt, parser, data, (unsigned int)size) : 0;
    if (result != WEBVTT_RESULT_OK && result != WEBVTT_RESULT_HEADER) {
        fprintf(stderr, "host: result %d, the rest of a chunk is lost\n", result);
    }
    vtt->pfnGetParseResult(parser); /* take_cues runs here */
    return result;
}

/* Feeds a whole file. The first line goes alone: a 2 for it means that the track is refused, while
   a 2 for more than it could also mean that a cue was bad. */
static int play(const WebvttModuleMethods* vtt, unsigned int parser, FILE* track) {
    char buffer[kChunk];
    size_t size = fread(buffer, 1, sizeof buffer, track), total = 0, line = 0;
    while (line < size && buffer[line] != '\n' && buffer[line] != '\r') {
        ++line;
    }
    line += line < size;
    if (!ferror(track) && feed(vtt, parser, buffer, line) != WEBVTT_RESULT_HEADER) {
        fprintf(stderr, "host: not a WebVTT track\n");
        return kRefused;
    }
    feed(vtt, parser, buffer + line, size - line);
    while (size == sizeof buffer && (total += size) < kLongestTrack) {
        size = fread(buffer, 1, sizeof buffer, track);
        feed(vtt, parser, buffer, size);
    }
    if (ferror(track) || !feof(track)) {
        fprintf(stderr, "host: %s\n", ferror(track) ? "the track cannot be read" : "too long");
        return kBadFile;
    }
    feed(vtt, parser, "\n\n\n", 3); /* the last cue ends with a blank line, which may be missing */
    return kDone;
}

/* Prints the captions and frees them. Their text came over a network: no control bytes. */
static void show(struct Caption* caption) {
    while (caption != NULL) {
        struct Caption* next = caption->next;
        char* c;
        for (c = caption->text; *c != '\0'; ++c) {
            *c = (char)(iscntrl((unsigned char)*c) && *c != '\n' ? '?' : *c);
        }
        /* False as well for a time that is not a number. */
        if (caption->start < caption->end) {
            printf("%.3f to %.3f\n%s", caption->start, caption->end, caption->text);
        }
        free(caption);
        caption = next;
    }
}

static int host(const WebvttModuleMethods* vtt, const char* path) {
    struct Captions captions = {NULL, &captions.first, 0};
    unsigned int parser = 0;
    int status = kBadFile;
    FILE* track = fopen(path, "rb");
    if (track == NULL) {
        perror(path);
    } else if (vtt->pfnCreate(&parser) != WEBVTT_RESULT_OK) {
        captions.out_of_memory = 1;
    } else {
        vtt->pfnSetEventNty(parser, &captions,
                            take_cues); /* before the first result is asked for */
        status = play(vtt, parser, track);
        vtt->pfnRelease(parser);
    }
    if (track != NULL) {
        fclose(track);
    }
    show(captions.first);
    if (captions.out_of_memory) {
        fprintf(stderr, "host: out of memory\n");
    }
    return captions.out_of_memory ? kRefused : status;
}

int main(int argc, char** argv) {
    void* so = argc == 3 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    const WebvttModuleInfo* module = so != NULL ? dlsym(so, QUILLCAPTION_DESCRIPTOR_SYMBOL) : NULL;
    int status = kBadModule;
    if (argc != 3) {
        fprintf(stderr, "usage: host MODULE TRACK\n");
        return kBadFile;
    }
    if (module == NULL || module->prMethods == NULL) {
        fprintf(stderr, "host: %s\n", module == NULL ? dlerror() : "the module has no table");
    } else {
        status = host(module->prMethods, argv[2]);
    }
    return so != NULL && dlclose(so) != 0 ? kBadModule : status;
}
