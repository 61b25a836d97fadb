/*
 * quillcaption: the interface between a player and the WebVTT parser module.
 *
 * A player loads the module, reads its descriptor by name, and from then on calls only
 * the six functions of the method table:
 *
 *     void *so = dlopen("./quillcaption.so", RTLD_NOW | RTLD_LOCAL);
 *     auto *info = static_cast<WebvttModuleInfo *>(dlsym(so, QUILLCAPTION_DESCRIPTOR_SYMBOL));
 *     const WebvttModuleMethods *vtt = info->prMethods;
 *
 *     unsigned int parser = 0;
 *     if (vtt->pfnCreate(&parser) != WEBVTT_RESULT_OK) {
 *         return;                                 // no memory
 *     }
 *     vtt->pfnSetEventNty(parser, my_tag, my_callback);
 *     bool ended = false;
 *     do {
 *         const char *chunk = "\n\n\n";           // the last cue waits for a blank line
 *         unsigned int size = 3;
 *         ended = !my_next_chunk(&chunk, &size);
 *         try {
 *             vtt->pfnParse(parser, chunk, size);
 *         } catch (const std::exception &) {
 *             // a track can cause this: cues of this chunk are missing, the next can be fed
 *         }
 *         vtt->pfnGetParseResult(parser);         // my_callback runs here
 *     } while (!ended);
 *     vtt->pfnRelease(parser);
 *     parser = 0;                                 // the next parser may get the same number
 *
 * (A host in C needs a few lines of C++ around pfnParse; examples/guarded_parse.cpp has them.)
 *
 * Calling rules for everything below:
 *   - The module has no locks. Calls on one parser must not overlap, and Create and Release
 *     must not overlap with any call at all. Which thread calls does not matter.
 *   - The module writes diagnostics to standard output and never reads or opens anything.
 *   - Text is bytes. The module neither checks nor changes their encoding (WebVTT is UTF-8).
 *
 * Valid C11 and C++17. Only 32-bit targets (ILP32) are supported: the module's handles are
 * addresses in 32 bits, and the records' offsets below are a fixed binary contract.
 */
#ifndef QUILLCAPTION_QUILLCAPTION_H
#define QUILLCAPTION_QUILLCAPTION_H

#include <limits.h>
#include <stddef.h>
#include <stdint.h>

#if UINTPTR_MAX != UINT32_MAX || ULONG_MAX != UINT32_MAX || UINT_MAX != UINT32_MAX
#error "quillcaption supports 32-bit (ILP32) targets only: compile for one, for example with -m32"
#else

/** The version of the module and of this header, by semantic versioning. It stands here only. */
#define QUILLCAPTION_VERSION_MAJOR 0
#define QUILLCAPTION_VERSION_MINOR 1
#define QUILLCAPTION_VERSION_PATCH 0
#define QUILLCAPTION_VERSION "0.1.0"

/** Name of the exported descriptor, for dlsym. It points at a WebvttModuleInfo. */
#define QUILLCAPTION_DESCRIPTOR_SYMBOL "WEBVTT_MODULE_INFO"

/** Name of the exported method table, for dlsym. The descriptor points at the same object. */
#define QUILLCAPTION_METHODS_SYMBOL "WebVtt_Module_Methods"

/** Results of pfnCreate and pfnParse, signed 32-bit. */
enum {
    WEBVTT_RESULT_OK = 0,     /**< done; also every chunk fed after the track was rejected */
    WEBVTT_RESULT_HEADER = 1, /**< the chunk ended inside the header section (feed the next one),
                                   or the data pointer was null or the size 0 */
    WEBVTT_RESULT_ERROR = 2   /**< not a WebVTT track, out of memory, a start tag that is not
                                   known, an unregistered handle, or a null handle pointer */
};

/** What the callback is told. 32 bits wide on every target. */
typedef enum WEBVTT_EVENT_T {
    WEBVTT_EVENT_PARSE_RESULT = 0,          /**< cues are delivered; the only event there is */
    WEBVTT_EVENT_FORCE_32_BITS = 0x7FFFFFFF /**< never sent; keeps the enumeration 32 bits wide */
} WEBVTT_EVENT_T;

/** Values of WebvttCueNode::eTextAlign. */
enum {
    WEBVTT_TEXT_ALIGN_START = 0,  /**< also any keyword that is not known, such as "center" */
    WEBVTT_TEXT_ALIGN_MIDDLE = 1, /**< a cue without an "align" setting */
    WEBVTT_TEXT_ALIGN_END = 2,
    WEBVTT_TEXT_ALIGN_LEFT = 3,
    WEBVTT_TEXT_ALIGN_RIGHT = 4
};

/** Values of WebvttCueNode::eVertical. */
enum {
    WEBVTT_VERTICAL_NONE = 0,         /**< horizontal text; a cue without a "vertical" setting */
    WEBVTT_VERTICAL_GROWING_LEFT = 1, /**< "vertical:lr" */
    WEBVTT_VERTICAL_GROWING_RIGHT = 2 /**< "vertical:rl" */
};

/** Gives a double the same 8-byte place in a record on every 32-bit target. */
#ifdef __cplusplus
#define QUILLCAPTION_ALIGN_8 alignas(8)
#else
#define QUILLCAPTION_ALIGN_8 _Alignas(8)
#endif

/**
 * One cue, as the callback reads it in place.
 *
 * The record and its texts belong to the module. They are valid only until the callback
 * returns; copy what is kept, change nothing. "Default" is what a cue without that setting has.
 */
typedef struct WebvttCueNode {
    /** Always null in a delivered record. */
    char* pcAuxText;
    /** Start of display in seconds, after the track's timestamp map and the video time were
        applied. May be negative. Not checked against the end. */
    QUILLCAPTION_ALIGN_8 double dStartTime;
    /** End of display, as dStartTime. May lie before the start. */
    QUILLCAPTION_ALIGN_8 double dEndTime;
    /** The cue's text without markup, zero-terminated, lines separated and normally ended by a
        line feed. Never null. May hold any other byte, control bytes included. */
    char* pcText;
    /** Line number when fgSnapToLines is 1 (negative counts from the last line), else a
        percentage of the video height. A fraction is cut off. Numbers wrap in 32 bits as they
        are read, so that 2147483648 arrives as -2147483648; what a sign or an endless fraction
        puts beyond the range after that arrives as the nearest number in it. Default 100. */
    int32_t i4Line;
    /** Always 0. */
    uint8_t fgReserved;
    /** 1: i4Line is a line number; 0: a percentage. Default 1. */
    uint8_t fgSnapToLines;
    /** Position of the cue box in percent, 0 to 100, fraction cut off. Default 50, or 0 or 100
        where an "align" setting of start or left, end or right implies it. */
    uint8_t u1Position;
    /** Size of the cue box in percent, fraction cut off. Not checked: the low 8 bits of what
        the track says, so 300% arrives as 44. Default 100. */
    uint8_t u1Size;
    /** WEBVTT_TEXT_ALIGN_..., default 1. */
    int32_t eTextAlign;
    /** WEBVTT_VERTICAL_..., default 0. */
    int32_t eVertical;
    /** The next cue of this delivery in track order, or null after the last one. */
    struct WebvttCueNode* prNext;
} WebvttCueNode;

/**
 * What one delivery holds; third argument of the callback. It belongs to the module and is
 * valid only until the callback returns.
 */
typedef struct WebvttDataInfo {
    /** The first cue, or null when no cue was completed since the last delivery. */
    WebvttCueNode* prCueList;
    /** Number of cues in the list. */
    uint32_t u4CueCount;
    /** Always 0. */
    uint32_t u4Reserved;
} WebvttDataInfo;

/**
 * The host's callback. It runs inside pfnGetParseResult, on the thread that called that.
 *
 * @param eEvent WEBVTT_EVENT_PARSE_RESULT.
 * @param pvTag  the pointer given at registration, unchanged; the module never looks behind it.
 * @param pvInfo a WebvttDataInfo*, valid until the callback returns.
 *
 * The callback must not release the parser that it is called for; must not feed it, for cues
 * completed meanwhile would be freed undelivered; must not call pfnGetParseResult for it, which
 * would deliver the same cues again, to the same callback, without end; and must not throw.
 */
typedef void (*WebvttEventNotify)(WEBVTT_EVENT_T eEvent, void* pvTag, void* pvInfo);

/**
 * The method table, reached through the descriptor. All six functions are always set and stay
 * valid until the module is unloaded.
 *
 * A handle that is not live (0, never created, released) is harmless: the call prints
 * "[WEBVTT API:<function>] handle MUST not be NULL", touches no memory behind the handle, and
 * pfnParse returns WEBVTT_RESULT_ERROR. But a released handle is live again as soon as a new
 * parser gets the same number, which is usually the very next one: set it to 0.
 */
typedef struct WebvttModuleMethods {
    /**
     * Makes a parser for one track and stores its handle in *pHandle. May be called at any
     * time after loading. The host owns the handle and gives it back with pfnRelease.
     * Returns 0; or 2 when pHandle is null (nothing is made) or memory is out (*pHandle is 0).
     */
    int (*pfnCreate)(unsigned int* pHandle);

    /**
     * Ends a parser and frees all that it holds, cues not yet delivered included. The handle is
     * dead afterwards; set it to 0, for a new parser may get the same number. Not from within the
     * callback of the same parser. Release every parser before the module is unloaded.
     */
    void (*pfnRelease)(unsigned int handle);

    /**
     * Feeds the next chunk of the track. The first chunk must hold the whole first line; after
     * that a chunk may end anywhere. pvData is read during the call only and stays the host's.
     * u4Size is in bytes. A track's last cue is complete only when a blank line follows it: feed
     * line feeds ("\n\n\n" serves every ending) after a track that may lack one.
     *
     * Returns 0, 1 or 2 (WEBVTT_RESULT_...). Only a first chunk that is refused ends the track
     * (2, and 0 for every later call); after any other 2 the rest of that chunk is lost and the
     * next chunk may be fed.
     *
     * May throw C++ exceptions, after which the rest of the chunk is lost and the parser can go
     * on with the next chunk or be released:
     *   std::out_of_range  "basic_string::at" or "basic_string::substr": an X-TIMESTAMP-MAP
     *                      header without a value or without its second item, or a "line"
     *                      setting without a number;
     *   std::bad_alloc     memory ran out where no result code reports it.
     */
    int (*pfnParse)(unsigned int handle, const void* pvData, unsigned int u4Size);

    /**
     * Registers the callback and its tag, replacing earlier ones. A null pfnNotify changes
     * nothing. Must be called before the first pfnGetParseResult: without a callback that call
     * crashes the process.
     */
    void (*pfnSetEventNty)(unsigned int handle, void* pvTag, WebvttEventNotify pfnNotify);

    /**
     * Calls the callback exactly once with all cues completed since the last call (an empty list
     * when there are none), then frees them. A callback must have been registered: it is called
     * without a look, and a missing one crashes the process. Usually called after every chunk; may
     * be called at any time outside the callback.
     */
    void (*pfnGetParseResult)(unsigned int handle);

    /**
     * Sets the video presentation time in ticks of 90 kHz; 0 until set. Its whole seconds are
     * subtracted from the times of all cues that are completed by later pfnParse calls; cues
     * already waiting for delivery keep their times.
     */
    void (*pfnSetVideoPTS)(unsigned int handle, unsigned long u4Pts);
} WebvttModuleMethods;

/** The module descriptor, an object of the module that lives until the module is unloaded. */
typedef struct WebvttModuleInfo {
    /** Always 1. What it means is up to the player's module loader. */
    uint32_t u4LoaderWord;
    /** The module's file name, "quillcaption.so". */
    const char* pcModuleName;
    /** The method table. */
    const WebvttModuleMethods* prMethods;
    /** All zero. */
    uint8_t au1Reserved[132];
} WebvttModuleInfo;

/* The binary contract, checked wherever this header is compiled. */
#ifdef __cplusplus
#define QUILLCAPTION_ASSERT(condition, text) static_assert(condition, text)
#else
#define QUILLCAPTION_ASSERT(condition, text) _Static_assert(condition, text)
#endif
#define QUILLCAPTION_ASSERT_AT(type, field, offset)        \
    QUILLCAPTION_ASSERT(offsetof(type, field) == (offset), \
                        #type "::" #field " must lie at " #offset)

QUILLCAPTION_ASSERT(sizeof(WEBVTT_EVENT_T) == 4, "WEBVTT_EVENT_T must be 32 bits wide");
QUILLCAPTION_ASSERT_AT(WebvttCueNode, pcAuxText, 0);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, dStartTime, 8);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, dEndTime, 16);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, pcText, 24);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, i4Line, 28);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, fgReserved, 32);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, fgSnapToLines, 33);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, u1Position, 34);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, u1Size, 35);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, eTextAlign, 36);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, eVertical, 40);
QUILLCAPTION_ASSERT_AT(WebvttCueNode, prNext, 44);
QUILLCAPTION_ASSERT(sizeof(WebvttCueNode) == 48, "WebvttCueNode must be 48 bytes");
QUILLCAPTION_ASSERT_AT(WebvttDataInfo, prCueList, 0);
QUILLCAPTION_ASSERT_AT(WebvttDataInfo, u4CueCount, 4);
QUILLCAPTION_ASSERT_AT(WebvttDataInfo, u4Reserved, 8);
QUILLCAPTION_ASSERT(sizeof(WebvttDataInfo) == 12, "WebvttDataInfo must be 12 bytes");
QUILLCAPTION_ASSERT(sizeof(WebvttModuleMethods) == 24, "WebvttModuleMethods must be 24 bytes");
QUILLCAPTION_ASSERT_AT(WebvttModuleInfo, u4LoaderWord, 0);
QUILLCAPTION_ASSERT_AT(WebvttModuleInfo, pcModuleName, 4);
QUILLCAPTION_ASSERT_AT(WebvttModuleInfo, prMethods, 8);
QUILLCAPTION_ASSERT_AT(WebvttModuleInfo, au1Reserved, 12);
QUILLCAPTION_ASSERT(sizeof(WebvttModuleInfo) == 144, "WebvttModuleInfo must be 144 bytes");

#endif /* ILP32 */
#endif /* QUILLCAPTION_QUILLCAPTION_H */
