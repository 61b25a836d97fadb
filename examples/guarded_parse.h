/*
 * pfnParse for hosts in C: what a track can make it throw comes back as a number.
 *
 * Compile guarded_parse.cpp with the C++ compiler, link the host with libstdc++, and call this
 * wherever you would call pfnParse.
 */
#ifndef EXAMPLES_GUARDED_PARSE_H_
#define EXAMPLES_GUARDED_PARSE_H_

#include "quillcaption/quillcaption.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Results beside WEBVTT_RESULT_...: none of them is a value that pfnParse returns. */
enum {
    GUARDED_PARSE_BAD_INPUT = -1, /**< std::out_of_range: a header or setting without its value */
    GUARDED_PARSE_NO_MEMORY = -2, /**< std::bad_alloc: memory ran out */
    GUARDED_PARSE_UNKNOWN = -3    /**< anything else; no module so far throws it */
};

/**
 * Feeds the next chunk as pfnParse does and never throws. After a negative result the rest of the
 * chunk is lost, and the parser can be fed the next chunk or be released.
 */
int guarded_parse(const WebvttModuleMethods* methods, unsigned int handle, const void* data,
                  unsigned int size);

#ifdef __cplusplus
}
#endif

#endif /* EXAMPLES_GUARDED_PARSE_H_ */
