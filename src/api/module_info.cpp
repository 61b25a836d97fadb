// The descriptor and the method table, through which a host reaches the entry points.
#include "api/entry_points.h"

const WebvttModuleMethods WebVtt_Module_Methods = {
    IZorWebVtt_Parser_Create,          IZorWebVtt_Parser_Release,
    IZorWebVtt_Parser_rsltParse,       IZorWebVtt_Parser_vSetWebvttEventNty,
    IZorWebVtt_Parser_vGetParseResult, IZorWebVtt_Parser_vSetVideoPTS,
};

const WebvttModuleInfo WEBVTT_MODULE_INFO = {1, "quillcaption.so", &WebVtt_Module_Methods, {}};
