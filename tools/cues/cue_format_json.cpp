#include "tools/console/json.h"
#include "tools/cues/cue_format.h"

namespace quill::cues {
namespace {

using console::Json;

Json TextOrNull(const char* text) {
    return text != nullptr ? Json(text) : Json(nullptr);
}

}  // namespace

std::string FormatAsJson(const WebvttCueNode& cue, std::uint64_t /*number*/) {
    Json record;
    record["pcAuxText"] = TextOrNull(cue.pcAuxText);
    record["dStartTime"] = cue.dStartTime;
    record["dEndTime"] = cue.dEndTime;
    record["pcText"] = TextOrNull(cue.pcText);
    record["i4Line"] = cue.i4Line;
    record["fgReserved"] = cue.fgReserved;
    record["fgSnapToLines"] = cue.fgSnapToLines;
    record["u1Position"] = cue.u1Position;
    record["u1Size"] = cue.u1Size;
    record["eTextAlign"] = cue.eTextAlign;
    record["eVertical"] = cue.eVertical;
    // ASCII only: control characters, DEL and U+0080 to U+009F leave as \uNNNN.
    return console::JsonLine(record);
}

}  // namespace quill::cues
