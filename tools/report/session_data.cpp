#include "tools/report/session_data.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/console/text.h"
#include "tools/replay/session_printer.h"

namespace quill::report {
namespace {

// Some hundred thousand calls. A page of more would be slow to open.
constexpr std::size_t kMostOfCalls = 8 << 20;
constexpr std::size_t kMostOfMistakes = 1 << 20;

// Lines of an outcome in one text, without the cues.
Json JoinedOutcome(const Json& lines) {
    if (lines.is_null()) {
        return nullptr;
    }
    std::string text;
    for (const Json& line : lines) {
        const auto& words = line.get_ref<const std::string&>();
        if (!console::BeginsWith(words, "cue ")) {
            text += (text.empty() ? "" : "\n") + words;
        }
    }
    return text;
}

// From the call on: shorter numbers than those from the session's beginning.
Json After(const replay::Call& call, std::optional<std::uint64_t> us) {
    return us ? Json(static_cast<std::int64_t>(*us - call.us)) : Json(nullptr);
}

// `before` is the call before it in the log.
Json ForPage(const replay::Session& session, const replay::Call& call, const replay::Call& before) {
    Json object = replay::InJson(session, call);
    object["call"] = std::int64_t{call.number} - before.number;
    object["us"] = static_cast<std::int64_t>(call.us - before.us);
    for (const char* const elsewhere : {"line", "bytes", "mistakes", "deliveries", "ended_us"}) {
        object.erase(elsewhere);
    }
    object["outcome"] = JoinedOutcome(object["outcome"]);
    object["took"] = After(call, call.ended_us);
    if (call.size != call.bytes.size()) {
        object["fed"] = call.bytes.size();
    }
    // A call makes one delivery; two are more than any recorder writes.
    const std::vector<replay::Delivery>& deliveries = call.outcome.deliveries;
    std::size_t cues = 0;
    for (const replay::Delivery& delivery : deliveries) {
        cues += delivery.cues.size();
    }
    object["delivered_after"] = deliveries.empty() ? Json(nullptr) : After(call, deliveries[0].us);
    object["cues"] = deliveries.empty() ? Json(nullptr) : Json(cues);
    return object;
}

}  // namespace

Json MakeSessionData(const replay::Session& session) {
    Columns calls;
    Columns mistakes;
    const auto add = [&mistakes](const replay::Mistake& mistake) {
        mistakes.Add({{"call", mistake.call}, {"code", mistake.code}, {"text", mistake.text}});
    };
    const replay::Call none;
    const replay::Call* before = &none;
    for (const replay::Call& call : session.calls) {
        calls.Add(ForPage(session, call, *before));
        before = &call;
        for (const replay::Mistake& mistake : call.mistakes) {
            add(mistake);
        }
    }
    for (const replay::Mistake& mistake : session.mistakes) {
        add(mistake);
    }
    const replay::Recording& recording = session.recording;
    return {{"name", session.name},
            {"recorder", recording.recorder},
            {"module", recording.module},
            {"started", recording.started},
            {"hidden", recording.is_hidden},
            {"cut_off", session.is_cut_off},
            {"stopped", session.was_stopped},
            {"calls", calls.Pack(kMostOfCalls)},
            {"mistakes", mistakes.Pack(kMostOfMistakes)}};
}

}  // namespace quill::report
