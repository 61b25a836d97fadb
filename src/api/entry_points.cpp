#include "api/entry_points.h"

#include <cstdio>
#include <memory>
#include <new>

#include "api/handle_registry.h"
#include "parser/webvtt_parser.h"

using webvtt::HandleRegistry;
using webvtt::WebVTTParser;

namespace {

/// The parser of a live handle; null, after a line that names the caller, for any other value.
WebVTTParser* check_handle(unsigned int handle, const char* caller) {
    if (!HandleRegistry::fgIsLive(handle)) {
        // The same words for 0 and for a handle that is not, or no longer, live.
        std::printf("[WEBVTT API:%s] handle MUST not be NULL\n", caller);
        return nullptr;
    }
    if (handle == 0) {
        // No parser lies at address 0, so this would take a registry that was written over.
        std::printf("[WEBVTT API:%s] Fatal error \n", caller);
        return nullptr;
    }
    return reinterpret_cast<WebVTTParser*>(handle);
}

}  // namespace

int IZorWebVtt_Parser_Create(unsigned int* pHandle) {
    if (pHandle == nullptr) {
        std::printf("[WEBVTT API:%s] handle MUST not be NULL\n", __func__);
        return WEBVTT_RESULT_ERROR;
    }
    *pHandle = 0;
    try {
        auto parser = std::make_unique<WebVTTParser>();
        *pHandle = HandleRegistry::u4Register(parser.get());
        static_cast<void>(parser.release());  // the handle's now
    } catch (const std::bad_alloc&) {
        return WEBVTT_RESULT_ERROR;
    }
    return WEBVTT_RESULT_OK;
}

void IZorWebVtt_Parser_Release(unsigned int handle) {
    WebVTTParser* const parser = check_handle(handle, __func__);
    if (parser != nullptr) {
        delete parser;
        HandleRegistry::vUnregister(handle);
    }
}

int IZorWebVtt_Parser_rsltParse(unsigned int handle, const void* pvData, unsigned int u4Size) {
    WebVTTParser* const parser = check_handle(handle, __func__);
    return parser != nullptr ? parser->rsltParse(pvData, u4Size) : WEBVTT_RESULT_ERROR;
}

void IZorWebVtt_Parser_vSetWebvttEventNty(unsigned int handle, void* pvTag,
                                          void (*pfnNotify)(WEBVTT_EVENT_T, void*, void*)) {
    WebVTTParser* const parser = check_handle(handle, __func__);
    if (parser != nullptr) {
        parser->vSetWebvttEventNty(pvTag, pfnNotify);
    }
}

void IZorWebVtt_Parser_vGetParseResult(unsigned int handle) {
    WebVTTParser* const parser = check_handle(handle, __func__);
    if (parser != nullptr) {
        parser->vGetParseResult();
    }
}

void IZorWebVtt_Parser_vSetVideoPTS(unsigned int handle, unsigned long u4Pts) {
    WebVTTParser* const parser = check_handle(handle, __func__);
    if (parser != nullptr) {
        parser->vSetVideoPTS(u4Pts);
    }
}
