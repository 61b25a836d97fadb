#include "tools/replay/session_printer.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "support/notation.h"
#include "tools/console/escape.h"
#include "tools/console/json.h"
#include "tools/console/text.h"

namespace quill::replay {
namespace {

using OrderedJson = console::Json;
using console::JsonLine;

constexpr std::size_t kMostLines = 5;  // of a difference
constexpr std::size_t kLongestLine = 200;

std::string Counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string TextLine(const std::string& text) {
    return console::Escape(text, console::LineFeeds::kEscape) + "\n";
}

// "3 cues", "= 0", "throws std::out_of_range: basic_string::at"
std::string OutcomeInShort(const Call& call) {
    if (!call.has_returned) {
        return "no return";
    }
    if (!call.was_passed_on) {
        return call.function == Function::kRelease ? "put off" : "not passed on";
    }
    const Outcome& outcome = call.outcome;
    std::string text;
    for (const Delivery& delivery : outcome.deliveries) {
        text += (text.empty() ? "" : ", ") + Counted(delivery.cues.size(), "cue");
    }
    if (outcome.exception) {
        text += "throws " + *outcome.exception;
    } else if (outcome.result) {
        text += "= " + std::to_string(*outcome.result);
    }
    return text;
}

std::size_t DepthOf(const Session& session, const Call& call) {
    std::size_t depth = 0;
    for (const Call* one = &call; one->within; one = &session.calls[*one->within]) {
        ++depth;
    }
    return depth;
}

// "H105: what is wrong", for a mistake below its call.
std::string WithoutPlace(const Mistake& mistake) {
    const bool has_place = console::BeginsWith(mistake.text, mistake.code + " at call ");
    const std::size_t end = has_place ? mistake.text.find(": ") : std::string::npos;
    return end == std::string::npos ? mistake.text : mistake.code + mistake.text.substr(end);
}

std::string ShowCall(const Session& session, const Call& call) {
    std::array<char, 64> front;
    std::snprintf(front.data(), front.size(), "%5u %11.6f  thread %u  ",
                  static_cast<unsigned>(call.number), static_cast<double>(call.us) / 1e6,
                  static_cast<unsigned>(call.thread));
    const std::string outcome = OutcomeInShort(call);
    std::string text = TextLine(front.data() + std::string(2 * DepthOf(session, call), ' ') +
                                DescribeCall(call) + (outcome.empty() ? "" : "  " + outcome));
    for (const Mistake& mistake : call.mistakes) {
        text += TextLine("      " + WithoutPlace(mistake));
    }
    return text;
}

OrderedJson InJson(const std::vector<Mistake>& mistakes) {
    OrderedJson list = OrderedJson::array();
    for (const Mistake& mistake : mistakes) {
        list.push_back({{"code", mistake.code}, {"text", mistake.text}});
    }
    return list;
}

// How the log ends, where that is not as it should be.
std::string Ending(const Session& session) {
    return session.was_stopped  ? "; the log was stopped at its limit"
           : session.is_cut_off ? "; the log is cut off in its last line"
                                : "";
}

std::size_t CountMistakes(const Session& session) {
    std::size_t count = session.mistakes.size();
    for (const Call& call : session.calls) {
        count += call.mistakes.size();
    }
    return count;
}

std::string DifferenceLines(const char* label, const std::vector<std::string>& lines) {
    if (lines.empty()) {
        return std::string("  ") + label + "nothing\n";
    }
    std::string text;
    for (std::size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) {
        const bool is_long = lines[i].size() > kLongestLine;
        text += TextLine(std::string("  ") + label + lines[i].substr(0, kLongestLine) +
                         (is_long ? "..." : ""));
    }
    return text + (lines.size() > kMostLines ? std::string("  ") + label + "...\n" : "");
}

// How many calls came out as recorded, and why others could not.
std::string InWords(const Session& session, const Verdict& verdict) {
    std::size_t held_back = 0;
    std::size_t unfinished = 0;
    for (const Call& call : session.calls) {
        held_back += call.was_passed_on ? 0 : 1;
        unfinished += call.has_returned ? 0 : 1;
    }
    const std::size_t all = session.calls.size() - held_back - unfinished;
    std::string text = (verdict.is_same() && verdict.agreed == all
                            ? "all " + Counted(all, "call")
                            : std::to_string(verdict.agreed) + " of " + Counted(all, "call")) +
                       " came out as recorded";
    if (held_back != 0) {
        text += ", " + std::to_string(held_back) + " more did not reach the module";
    }
    if (unfinished != 0) {
        text += ", " + std::to_string(unfinished) + " more did not return";
    }
    if (session.overlaps != 0) {
        text += "; " + Counted(session.overlaps, "call") +
                " began within another thread's, and came behind it here";
    }
    return text + Ending(session);
}

// Where the play ended that did not come to its end.
std::string BrokenPlace(const Session& session, const Verdict& verdict) {
    return verdict.call == nullptr ? session.name + ": before the first call"
                                   : Where(session, *verdict.call);
}

}  // namespace

OrderedJson InJson(const Session& session, const Call& call) {
    OrderedJson object = {{"call", call.number},
                          {"line", call.line},
                          {"us", call.us},
                          {"ended_us", call.ended_us ? OrderedJson(*call.ended_us) : nullptr},
                          {"thread", call.thread},
                          {"function", NameOf(call.function)},
                          {"parser", call.parser != 0 ? OrderedJson(call.parser) : nullptr}};
    if (call.function == Function::kParse) {
        object["size"] = call.size;
        object["bytes"] = call.has_pointer ? OrderedJson(support::quote(call.bytes)) : nullptr;
    } else if (call.function == Function::kSetVideoPts) {
        object["ticks"] = call.ticks;
    }
    object["within"] =
        call.within ? OrderedJson(session.calls[*call.within].number) : OrderedJson(nullptr);
    object["passed"] = call.was_passed_on;
    object["outcome"] = call.has_returned
                            ? OrderedJson(DescribeOutcome(call.function, call.outcome))
                            : OrderedJson(nullptr);
    object["deliveries"] = OrderedJson::array();
    for (const Delivery& delivery : call.outcome.deliveries) {
        object["deliveries"].push_back({{"us", delivery.us}, {"cues", delivery.cues.size()}});
    }
    object["mistakes"] = InJson(call.mistakes);
    return object;
}

std::string ShowAsText(const Session& session) {
    std::string text;
    for (const Call& call : session.calls) {
        text += ShowCall(session, call);
    }
    for (const Mistake& mistake : session.mistakes) {
        text += TextLine("      " + mistake.text);
    }
    return text + Counted(session.calls.size(), "call") + ", " +
           Counted(CountMistakes(session), "mistake") + Ending(session) + "\n";
}

std::string ShowAsJson(const Session& session) {
    std::string text;
    for (const Call& call : session.calls) {
        text += JsonLine(InJson(session, call));
    }
    for (const OrderedJson& mistake : InJson(session.mistakes)) {
        text += JsonLine({{"mistake", mistake["code"]}, {"text", mistake["text"]}});
    }
    return text + JsonLine({{"calls", session.calls.size()},
                            {"mistakes", CountMistakes(session)},
                            {"cut_off", session.is_cut_off},
                            {"stopped", session.was_stopped}});
}

std::string FormatAsText(const Session& session, const Verdict& verdict) {
    std::string text;
    if (!verdict.end.empty()) {
        text = TextLine(BrokenPlace(session, verdict) + ": the module " + verdict.end);
    } else if (!verdict.is_same()) {
        text = TextLine(Where(session, *verdict.call)) +
               DifferenceLines("expected  ", verdict.expected) +
               DifferenceLines("got       ", verdict.got);
    }
    return text + TextLine(session.name + ": " + InWords(session, verdict));
}

std::string FormatAsJson(const Session& session, const Verdict& verdict) {
    OrderedJson difference = nullptr;
    if (!verdict.is_same()) {
        difference = {{"call", nullptr}, {"line", nullptr}, {"function", nullptr}};
        if (verdict.call != nullptr) {
            difference = {{"call", verdict.call->number},
                          {"line", verdict.call->line},
                          {"function", NameOf(verdict.call->function)}};
        }
        difference["expected"] = verdict.expected;
        difference["got"] = verdict.got;
        difference["end"] = verdict.end.empty() ? OrderedJson(nullptr) : OrderedJson(verdict.end);
    }
    return JsonLine({{"log", session.name},
                     {"same", verdict.is_same()},
                     {"calls", session.calls.size()},
                     {"agreed", verdict.agreed},
                     {"difference", difference}});
}

}  // namespace quill::replay
