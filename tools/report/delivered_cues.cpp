#include "tools/report/delivered_cues.h"

#include <deque>
#include <string>
#include <unordered_map>

#include "quillcaption/quillcaption.h"
#include "tools/cues/cue_format.h"

namespace quill::report {
namespace {

Json CueAsJson(const support::CueRecord& cue) {
    // A record has no constant texts, but nothing here writes to them.
    std::string text = cue.text;
    char none[] = "";
    WebvttCueNode node = {};
    node.pcAuxText = cue.has_aux_text ? none : nullptr;
    node.dStartTime = cue.start;
    node.dEndTime = cue.end;
    node.pcText = cue.has_text ? text.data() : nullptr;
    node.i4Line = cue.line;
    node.fgReserved = static_cast<std::uint8_t>(cue.reserved);
    node.fgSnapToLines = static_cast<std::uint8_t>(cue.snap_to_lines);
    node.u1Position = static_cast<std::uint8_t>(cue.position);
    node.u1Size = static_cast<std::uint8_t>(cue.size);
    node.eTextAlign = cue.text_align;
    node.eVertical = cue.vertical;
    return console::ParseJson(cues::FormatAsJson(node, 0));
}

// What tells cues apart: the whole record, or what of it the video time does not change.
std::string KeyOf(Json cue, bool with_times) {
    cue.erase("call");
    if (!with_times) {
        cue.erase("dStartTime");
        cue.erase("dEndTime");
    }
    return console::JsonText(cue);
}

}  // namespace

std::vector<Json> DeliveredCues(const replay::Session& session, std::uint32_t parser) {
    std::vector<Json> cues;
    for (const replay::Call& call : session.calls) {
        for (const replay::Delivery& delivery : call.outcome.deliveries) {
            for (const support::CueRecord& cue : delivery.cues) {
                if (call.parser == parser) {
                    cues.push_back(CueAsJson(cue));
                    cues.back()["call"] = call.number;
                }
            }
        }
    }
    return cues;
}

std::vector<std::size_t> FindDelivered(const std::vector<Json>& played,
                                       const std::vector<Json>& delivered) {
    std::vector<std::size_t> found(played.size(), 0);
    std::vector<bool> is_taken(delivered.size(), false);
    for (const bool with_times : {true, false}) {
        std::unordered_map<std::string, std::deque<std::size_t>> waiting;
        for (std::size_t place = 0; place < delivered.size(); ++place) {
            if (!is_taken[place]) {
                waiting[KeyOf(delivered[place], with_times)].push_back(place);
            }
        }
        for (std::size_t cue = 0; cue < played.size(); ++cue) {
            std::deque<std::size_t>* const places =
                found[cue] == 0 ? &waiting[KeyOf(played[cue], with_times)] : nullptr;
            if (places != nullptr && !places->empty()) {
                found[cue] = places->front() + 1;
                is_taken[places->front()] = true;
                places->pop_front();
            }
        }
    }
    return found;
}

}  // namespace quill::report
