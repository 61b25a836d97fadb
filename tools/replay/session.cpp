#include "tools/replay/session.h"

#include <array>
#include <cstdio>

#include "support/notation.h"
#include "tools/host/module_contract.h"

namespace quill::replay {
namespace {

constexpr std::size_t kMostShown = 40;  // bytes of a chunk

std::string Chunk(const Call& call) {
    std::string text = std::to_string(call.size) + (call.size == 1 ? " byte" : " bytes");
    // Of a chunk that nobody read nothing is known but its size.
    if (!call.has_pointer && call.parser != 0) {
        return "null, " + text;
    }
    if (!call.bytes.empty()) {
        text += " " + support::quote(std::string_view(call.bytes).substr(0, kMostShown)) +
                (call.bytes.size() > kMostShown ? "..." : "");
    }
    return text;
}

std::string Parser(const Call& call) {
    if (call.parser != 0) {
        return "parser " + std::to_string(call.parser);
    }
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "handle 0x%08X", static_cast<unsigned>(call.handle));
    return text.data();
}

}  // namespace

const char* NameOf(Function function) {
    return host::kTableSlots.at(static_cast<std::size_t>(function)).field;
}

std::vector<std::string> DescribeOutcome(Function function, const Outcome& outcome) {
    std::vector<std::string> lines = support::describe_printed(outcome.printed);
    for (const Delivery& delivery : outcome.deliveries) {
        for (const support::CueRecord& cue : delivery.cues) {
            lines.push_back(support::describe(cue));
        }
        if (delivery.cues.empty()) {
            lines.emplace_back("no cue");
        }
        if (delivery.count != delivery.cues.size() || delivery.reserved != 0) {
            lines.push_back("count " + std::to_string(delivery.count) + ", reserved " +
                            std::to_string(delivery.reserved));
        }
    }
    if (outcome.exception) {
        lines.push_back("throws " + *outcome.exception);
    }
    // Of a parser that was made nothing is told.
    if (outcome.result && (function != Function::kCreate || *outcome.result != 0)) {
        lines.push_back("= " + std::to_string(*outcome.result));
    }
    return lines;
}

std::string DescribeCall(const Call& call) {
    std::string text = std::string(NameOf(call.function)) + ", ";
    switch (call.function) {
        case Function::kCreate:
            return text + (!call.has_pointer  ? "null"
                           : call.parser != 0 ? Parser(call)
                                              : "no parser");
        case Function::kParse:
            return text + Parser(call) + ", " + Chunk(call);
        case Function::kSetEventNty:
            return text + Parser(call) + (call.has_pointer ? "" : ", null");
        case Function::kSetVideoPts:
            return text + Parser(call) + ", " + std::to_string(call.ticks) + " ticks";
        case Function::kRelease:
        case Function::kGetParseResult:
            break;
    }
    return text + Parser(call);
}

std::string Where(const Session& session, const Call& call) {
    return session.name + ":" + std::to_string(call.line) + ": call " +
           std::to_string(call.number) + ", " + DescribeCall(call);
}

}  // namespace quill::replay
