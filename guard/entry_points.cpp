// What a host sees of the guard: the module's own descriptor, table and functions.
#include "api/entry_points.h"

#include "guard/guard.h"

using guard::Call;
using guard::Function;
using guard::Guard;

int IZorWebVtt_Parser_Create(unsigned int* pHandle) {
    Call call(Function::kCreate);
    call.new_handle = pHandle;
    Guard::instance().make(call, [&call](const WebvttModuleMethods& module) {
        if (call.new_handle == nullptr) {
            call.result = module.pfnCreate(nullptr);
            return;
        }
        unsigned inner = 0;
        *call.new_handle = 0;
        call.result = module.pfnCreate(&inner);
        if (call.result == WEBVTT_RESULT_OK) {
            Guard::instance().adopt(call, inner);
        }
    });
    return call.result;
}

void IZorWebVtt_Parser_Release(unsigned int handle) {
    Call call(Function::kRelease, handle);
    Guard::instance().make(call, [&call](const WebvttModuleMethods& module) {
        // A live parser is released at the end, when no call on it is in progress.
        if (call.parser == nullptr) {
            module.pfnRelease(call.inner);
        }
    });
}

int IZorWebVtt_Parser_rsltParse(unsigned int handle, const void* pvData, unsigned int u4Size) {
    Call call(Function::kParse, handle);
    call.data = pvData;
    call.size = u4Size;
    Guard::instance().make(call, [&call](const WebvttModuleMethods& module) {
        call.result = module.pfnParse(call.inner, call.data, call.size);
    });
    return call.result;
}

void IZorWebVtt_Parser_vSetWebvttEventNty(unsigned int handle, void* pvTag,
                                          void (*pfnNotify)(WEBVTT_EVENT_T, void*, void*)) {
    Call call(Function::kSetEventNty, handle);
    call.tag = pvTag;
    call.notify = pfnNotify;
    Guard::instance().make(call, [&call](const WebvttModuleMethods& module) {
        Guard::instance().register_callback(call, module);
    });
}

void IZorWebVtt_Parser_vGetParseResult(unsigned int handle) {
    Call call(Function::kGetParseResult, handle);
    Guard::instance().make(
        call, [&call](const WebvttModuleMethods& module) { module.pfnGetParseResult(call.inner); });
}

void IZorWebVtt_Parser_vSetVideoPTS(unsigned int handle, unsigned long u4Pts) {
    Call call(Function::kSetVideoPts, handle);
    call.ticks = u4Pts;
    Guard::instance().make(call, [&call](const WebvttModuleMethods& module) {
        module.pfnSetVideoPTS(call.inner, call.ticks);
    });
}
