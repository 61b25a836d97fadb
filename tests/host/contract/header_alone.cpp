// The public header is all that a host needs, in C++17 too: nothing is included before it.
#include "quillcaption/quillcaption.h"
// Twice does no harm.
#include "quillcaption/quillcaption.h"

// Records are plain data, and the callback's type takes a function of the host.
static_assert(alignof(WebvttCueNode) == 8);
static_assert(__is_trivially_copyable(WebvttCueNode) && __is_standard_layout(WebvttCueNode));
static_assert(__is_standard_layout(WebvttModuleInfo) && __is_standard_layout(WebvttDataInfo));

uint32_t play(const WebvttModuleInfo& module, const char* track, unsigned int size);

uint32_t play(const WebvttModuleInfo& module, const char* track, unsigned int size) {
    const WebvttModuleMethods& methods = *module.prMethods;
    unsigned int parser = 0;
    uint32_t count = 0;
    if (methods.pfnCreate(&parser) != WEBVTT_RESULT_OK) {
        return 0;
    }
    const WebvttEventNotify notify = [](WEBVTT_EVENT_T, void* tag, void* info) {
        *static_cast<uint32_t*>(tag) += static_cast<WebvttDataInfo*>(info)->u4CueCount;
    };
    methods.pfnSetEventNty(parser, &count, notify);
    if (methods.pfnParse(parser, track, size) != WEBVTT_RESULT_ERROR) {
        methods.pfnGetParseResult(parser);
    }
    methods.pfnRelease(parser);
    return count;
}
