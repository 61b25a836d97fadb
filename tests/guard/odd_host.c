/*
 * A right host that does what few do: makes the module's names visible to all, forks while a thread
 * of its own is in a call, goes on in both processes, and loads the module again when it was
 * unloaded.
 */
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#undef NDEBUG
#include <assert.h>
#include <dlfcn.h>
#include <stdlib.h>
#include <string.h>

#include "quillcaption/quillcaption.h"

enum { kRounds = 300 };

static const WebvttModuleMethods* vtt;

static void count(WEBVTT_EVENT_T event, void* tag, void* info) {
    (void)event;
    *(unsigned int*)tag += ((WebvttDataInfo*)info)->u4CueCount;
}

static unsigned int open_track(unsigned int* cues) {
    unsigned int parser = 0;
    assert(vtt->pfnCreate(&parser) == WEBVTT_RESULT_OK);
    vtt->pfnSetEventNty(parser, cues, count);
    assert(vtt->pfnParse(parser, "WEBVTT\n\n", 8) == WEBVTT_RESULT_OK);
    return parser;
}

static void feed(unsigned int parser) {
    const char* const cue = "00:01.000 --> 00:02.000\nHello\n\n";
    assert(vtt->pfnParse(parser, cue, (unsigned int)strlen(cue)) == WEBVTT_RESULT_OK);
    vtt->pfnGetParseResult(parser);
}

static void* play(void* parser) {
    int round;
    for (round = 0; round < kRounds; ++round) {
        feed(*(unsigned int*)parser);
    }
    return NULL;
}

static void fork_and_go_on(void) {
    unsigned int cues = 0, others_cues = 0, children;
    unsigned int parser = open_track(&cues), others = open_track(&others_cues);
    pthread_t other;
    int status = 1;
    assert(pthread_create(&other, NULL, play, &others) == 0);
    for (children = 0; children < 5; ++children) {
        const pid_t child = fork();
        play(&parser);
        if (child == 0) {
            vtt->pfnRelease(parser);
            _exit(cues == (children + 1) * kRounds ? 0 : 1);
        }
        assert(waitpid(child, &status, 0) == child && status == 0);
    }
    assert(pthread_join(other, NULL) == 0);
    assert(cues == 5 * kRounds && others_cues == kRounds);
    vtt->pfnRelease(parser);
    vtt->pfnRelease(others);
}

int main(int argc, char** argv) {
    int round;
    assert(argc == 2);
    for (round = 0; round < 3; ++round) {
        void* const library = dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL);
        const WebvttModuleInfo* const info =
            library != NULL ? dlsym(library, QUILLCAPTION_DESCRIPTOR_SYMBOL) : NULL;
        assert(info != NULL);
        vtt = info->prMethods;
        fork_and_go_on();
        assert(dlclose(library) == 0);
        {
            const pid_t child = fork();
            int status = 1;
            if (child == 0) {
                _exit(0);
            }
            assert(waitpid(child, &status, 0) == child && status == 0);
        }
    }
    return 0;
}
