// A module for the guard under a thread sanitizer, which no 32-bit target has: the module's own
// handles are addresses in 32 bits. This one has the same interface, numbers for handles, and a
// lock, so that every race that is found is the guard's.
#include <map>
#include <mutex>

#include "api/entry_points.h"

namespace {

struct Parser {
    WebvttEventNotify notify = nullptr;
    void* tag = nullptr;
    unsigned waiting = 0;
};

std::mutex mutex;
std::map<unsigned, Parser> parsers;

}  // namespace

int IZorWebVtt_Parser_Create(unsigned int* pHandle) {
    const std::lock_guard<std::mutex> lock(mutex);
    // The lowest number that is free: as an address, it is soon another parser's.
    unsigned handle = 1;
    while (parsers.count(handle) != 0) {
        ++handle;
    }
    parsers[handle];
    *pHandle = handle;
    return WEBVTT_RESULT_OK;
}

void IZorWebVtt_Parser_Release(unsigned int handle) {
    const std::lock_guard<std::mutex> lock(mutex);
    parsers.erase(handle);
}

int IZorWebVtt_Parser_rsltParse(unsigned int handle, const void* pvData, unsigned int u4Size) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = parsers.find(handle);
    if (found == parsers.end() || pvData == nullptr || u4Size == 0) {
        return WEBVTT_RESULT_ERROR;
    }
    ++found->second.waiting;
    return WEBVTT_RESULT_OK;
}

void IZorWebVtt_Parser_vSetWebvttEventNty(unsigned int handle, void* pvTag,
                                          void (*pfnNotify)(WEBVTT_EVENT_T, void*, void*)) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = parsers.find(handle);
    if (found != parsers.end() && pfnNotify != nullptr) {
        found->second.notify = pfnNotify;
        found->second.tag = pvTag;
    }
}

void IZorWebVtt_Parser_vGetParseResult(unsigned int handle) {
    Parser parser;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = parsers.find(handle);
        if (found == parsers.end()) {
            return;
        }
        parser = found->second;
        found->second.waiting = 0;
    }
    char text[] = "text\n";
    WebvttCueNode cue = {};
    cue.pcText = text;
    WebvttDataInfo info = {parser.waiting != 0 ? &cue : nullptr, parser.waiting != 0, 0};
    parser.notify(WEBVTT_EVENT_PARSE_RESULT, parser.tag, &info);
}

void IZorWebVtt_Parser_vSetVideoPTS(unsigned int /*handle*/, unsigned long /*u4Pts*/) {}
