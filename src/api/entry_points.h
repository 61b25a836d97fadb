// The module's six entry points. What each does for a host is said in the public header.
#pragma once

#include "quillcaption/quillcaption.h"

/// Marks what a host may see; everything else in the module is hidden.
#define WEBVTT_EXPORT __attribute__((visibility("default")))

WEBVTT_EXPORT int IZorWebVtt_Parser_Create(unsigned int* pHandle);
WEBVTT_EXPORT void IZorWebVtt_Parser_Release(unsigned int handle);
WEBVTT_EXPORT int IZorWebVtt_Parser_rsltParse(unsigned int handle, const void* pvData,
                                              unsigned int u4Size);
WEBVTT_EXPORT void IZorWebVtt_Parser_vSetWebvttEventNty(unsigned int handle, void* pvTag,
                                                        void (*pfnNotify)(WEBVTT_EVENT_T, void*,
                                                                          void*));
WEBVTT_EXPORT void IZorWebVtt_Parser_vGetParseResult(unsigned int handle);
WEBVTT_EXPORT void IZorWebVtt_Parser_vSetVideoPTS(unsigned int handle, unsigned long u4Pts);

// The two data objects (module_info.cpp). Their names are looked up with dlsym.
extern WEBVTT_EXPORT const WebvttModuleMethods WebVtt_Module_Methods;
extern WEBVTT_EXPORT const WebvttModuleInfo WEBVTT_MODULE_INFO;
