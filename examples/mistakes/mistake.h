/*
 * What the hosts in this folder share. Each makes one mistake, which its first line names with the
 * code that the guard has for it and the call at which the guard finds it:
 *
 *     H101_no_callback quillcaption-guard.so
 */
#ifndef EXAMPLES_MISTAKES_MISTAKE_H_
#define EXAMPLES_MISTAKES_MISTAKE_H_

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "quillcaption/quillcaption.h"

#define CUE "00:01.000 --> 00:02.000\nHello\n\n"

static void* library;

/* What each of them does. */
static void play(const WebvttModuleMethods* vtt);

static inline void ignore_cues(WEBVTT_EVENT_T event, void* tag, void* info) {
    (void)event, (void)tag, (void)info;
}

static inline int feed(const WebvttModuleMethods* vtt, unsigned int parser, const char* text) {
    return vtt->pfnParse(parser, text, (unsigned int)strlen(text));
}

/* Three calls: create, register, feed the first line. */
static inline unsigned int open_track(const WebvttModuleMethods* vtt, WebvttEventNotify notify,
                                      void* tag) {
    unsigned int parser = 0;
    vtt->pfnCreate(&parser);
    vtt->pfnSetEventNty(parser, tag, notify);
    feed(vtt, parser, "WEBVTT\n\n");
    return parser;
}

int main(int argc, char** argv) {
    const WebvttModuleInfo* module;
    if (argc != 2 || (library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL)) == NULL ||
        (module = dlsym(library, QUILLCAPTION_DESCRIPTOR_SYMBOL)) == NULL) {
        fprintf(stderr, "usage: %s MODULE\n", argv[0]);
        return 2;
    }
    play(module->prMethods);
    return dlclose(library);
}

#endif /* EXAMPLES_MISTAKES_MISTAKE_H_ */
