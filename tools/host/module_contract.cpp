#include "tools/host/module_contract.h"

#include "quillcaption/quillcaption.h"

namespace quill::host {

const std::array<TableSlot, 6> kTableSlots = {{
    {"pfnCreate", "_Z24IZorWebVtt_Parser_CreatePj"},
    {"pfnRelease", "_Z25IZorWebVtt_Parser_Releasej"},
    {"pfnParse", "_Z27IZorWebVtt_Parser_rsltParsejPKvj"},
    {"pfnSetEventNty", "_Z36IZorWebVtt_Parser_vSetWebvttEventNtyjPvPFv14WEBVTT_EVENT_TS_S_E"},
    {"pfnGetParseResult", "_Z33IZorWebVtt_Parser_vGetParseResultj"},
    {"pfnSetVideoPTS", "_Z30IZorWebVtt_Parser_vSetVideoPTSjm"},
}};

const std::array<DataExport, 2> kDataExports = {{
    {QUILLCAPTION_DESCRIPTOR_SYMBOL, kDescriptorSize},
    {QUILLCAPTION_METHODS_SYMBOL, kTableSize},
}};

}  // namespace quill::host
