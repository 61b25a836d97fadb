/*
 * The start of a player: loading the module, and its first cue. For an instruction counter.
 *
 *     startup load|cue [LIBRARY] [--passes N]
 *
 * The part that is named counts; with no passes it is left out. A LIBRARY is loaded before that:
 * players in C++ have the C++ library when the module comes, but for this program, which is in C,
 * it comes with the module.
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "quillcaption/quillcaption.h"

static const WebvttModuleMethods* methods;
static unsigned cues;

static void stop(const char* what) {
    fprintf(stderr, "%s\n", what);
    exit(2);
}

static void* load_library(const char* file) {
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        stop(dlerror());
    }
    return library;
}

static void load(void) {
    const WebvttModuleInfo* const info =
        dlsym(load_library(QUILLCAPTION_BUILT_MODULE), QUILLCAPTION_DESCRIPTOR_SYMBOL);
    if (info == NULL) {
        stop(dlerror());
    }
    methods = info->prMethods;
}

static void count(WEBVTT_EVENT_T event, void* tag, void* info) {
    (void)event;
    (void)tag;
    cues += ((const WebvttDataInfo*)info)->u4CueCount;
}

static void take_first_cue(void) {
    static const char track[] = "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n";
    unsigned parser = 0;
    if (methods->pfnCreate(&parser) != 0) {
        stop("the module made no parser");
    }
    methods->pfnSetEventNty(parser, NULL, count);
    methods->pfnParse(parser, track, sizeof(track) - 1);
    methods->pfnGetParseResult(parser);
    methods->pfnRelease(parser);
}

/* The counting scripts know this function by its name. */
__attribute__((noinline)) void bench_measured(void (*work)(void)) {
    work();
}

int main(int argc, char** argv) {
    int passes = 1;
    if (argc > 3 && strcmp(argv[argc - 2], "--passes") == 0) {
        passes = atoi(argv[argc - 1]);
        argc -= 2;
    }
    if (argc < 2 || argc > 3) {
        stop("startup load|cue [LIBRARY] [--passes N]");
    }
    FILE* const report = fdopen(dup(STDOUT_FILENO), "w");
    if (report == NULL || freopen("/dev/null", "w", stdout) == NULL) {
        stop("standard output cannot be silenced");
    }
    if (argc == 3) {
        load_library(argv[2]);
    }
    const int load_counts = strcmp(argv[1], "load") == 0;
    if (!load_counts) {
        load();
    }
    if (passes != 0) {
        bench_measured(load_counts ? load : take_first_cue);
    }
    fprintf(report, "cues %u\n", cues);
    fflush(report);
    _exit(0); /* or unloading would count where all instructions do */
}
