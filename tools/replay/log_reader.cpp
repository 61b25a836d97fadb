#include "tools/replay/log_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "support/session_log.h"
#include "tools/console/descriptor.h"
#include "tools/console/failure.h"
#include "tools/replay/log_line.h"

namespace quill::replay {
namespace {

namespace field = support::session_log::field;

constexpr std::size_t kMostCalls = 1'000'000;
constexpr std::uint64_t kLongest = 366ull * 86'400 * 1'000'000;  // microseconds: a year
// At a time, by all threads and in all callbacks.
constexpr std::size_t kMostInProgress = 256;

// Null where a number would not be finite.
double ReadTime(const Fields& fields, const char* name) {
    return fields.IsNull(name) ? std::numeric_limits<double>::quiet_NaN() : fields.Seconds(name);
}

// Microseconds since the session began.
std::uint64_t TimeOr(const Fields& fields, std::uint64_t otherwise) {
    return fields.Has(field::kMicroseconds) ? fields.Number(field::kMicroseconds, kLongest)
                                            : otherwise;
}

support::CueRecord ReadCue(const Fields& fields) {
    support::CueRecord cue;
    cue.has_aux_text = fields.Has("pcAuxText");
    cue.start = ReadTime(fields, "dStartTime");
    cue.end = ReadTime(fields, "dEndTime");
    cue.has_text = !fields.IsNull("pcText");
    cue.text = cue.has_text ? fields.Bytes("pcText") : "";
    cue.line = fields.Signed("i4Line");
    cue.reserved = fields.Number("fgReserved");
    cue.snap_to_lines = fields.Number("fgSnapToLines");
    cue.position = fields.Number("u1Position");
    cue.size = fields.Number("u1Size");
    cue.text_align = fields.Signed("eTextAlign");
    cue.vertical = fields.Signed("eVertical");
    return cue;
}

void ReadArguments(const Fields& fields, Call& call) {
    if (call.function == Function::kCreate) {
        call.has_pointer = fields.FlagOr(field::kPointer, true);
        return;
    }
    call.handle = fields.Number(field::kHandle);
    call.parser = fields.NumberOr(field::kParser, 0);
    if (call.function == Function::kParse) {
        call.has_pointer = !fields.IsNull(field::kBytes);
        call.bytes = call.has_pointer ? fields.Bytes(field::kBytes) : "";
        call.size = fields.NumberOr(field::kLength, static_cast<std::uint32_t>(call.bytes.size()));
    } else if (call.function == Function::kSetEventNty) {
        call.has_pointer = fields.FlagOr(field::kCallback, true);
    } else if (call.function == Function::kSetVideoPts) {
        call.ticks = fields.Number(field::kTicks);
    }
}

// Puts the calls of a log together from its lines.
class LogReader {
  public:
    explicit LogReader(const std::string& name) { session_.name = name; }

    // `is_last` for the last line, which may be damaged.
    void AddLine(std::string_view line, bool is_last);
    Session Finish(bool is_cut_off);

  private:
    void Add(const Fields& fields);
    void ReadHeader(const Fields& fields);
    void AddCall(const Fields& fields);
    void FindOuter(Call& call);
    void AddDelivery(const Fields& fields);
    void AddReturn(const Fields& fields);
    Call& InProgress(const Fields& fields, const char* name);

    Session session_;
    std::size_t line_ = 0;
    bool has_ended_ = false;
    std::unordered_map<std::uint32_t, std::size_t> places_;  // of the calls, by their numbers
    std::vector<std::size_t> in_progress_;                   // places
    std::set<std::uint32_t> parsers_;                        // numbers of all that were created
    std::vector<Mistake> mistakes_;
};

void LogReader::AddLine(std::string_view line, bool is_last) {
    ++line_;
    const std::string where = session_.name + ":" + std::to_string(line_) + ": ";
    const Json nothing;
    const std::optional<Json> object = ParseLine(where, line);
    if (!object && is_last && line_ > 1) {
        session_.is_cut_off = true;
        return;
    }
    const Fields fields(where, object ? *object : nothing);
    if (line_ == 1) {
        ReadHeader(fields);
    } else if (!object) {
        fields.Fail("this line is damaged: it is no JSON object");
    } else {
        Add(fields);
    }
}

void LogReader::ReadHeader(const Fields& fields) {
    if (!fields.Has(field::kLog) || fields.Text(field::kLog) != support::session_log::kName) {
        fields.Fail(
            "this is no session log: its first line must be an object with \"log\": "
            "\"quillcaption\"");
    }
    const std::uint32_t version = fields.Number(field::kVersion);
    if (version != support::session_log::kVersion) {
        fields.Fail("this log has version " + std::to_string(version) + ", this quill reads " +
                    std::to_string(support::session_log::kVersion));
    }
    const auto text_of = [&fields](const char* name) {
        return fields.Has(name) ? fields.Text(name) : "";
    };
    Recording& recording = session_.recording;
    for (const char* const recorder : {field::kGuard, field::kQuill}) {
        if (fields.Has(recorder)) {
            recording.recorder = std::string(recorder) + " " + fields.Text(recorder);
        }
    }
    recording.module = text_of(field::kModule);
    recording.started = text_of(field::kStarted);
    recording.is_hidden = text_of(field::kText) == support::session_log::kHidden;
}

// The kinds of lines, by the field that each has and those above it have not. Other kinds are for
// other readers.
void LogReader::Add(const Fields& fields) {
    if (has_ended_) {
        fields.Fail("the log goes on behind its end");
    }
    if (fields.Has(field::kDo)) {
        AddCall(fields);
    } else if (fields.Has(field::kDelivery)) {
        AddDelivery(fields);
    } else if (fields.Has(field::kReturn)) {
        AddReturn(fields);
    } else if (fields.Has(field::kMistake)) {
        mistakes_.push_back(
            {fields.Number(field::kCall), fields.Text(field::kMistake), fields.Text(field::kText)});
    } else if (fields.Has(field::kEnd) || fields.Has(field::kStopped)) {
        has_ended_ = true;
        session_.was_stopped = fields.Has(field::kStopped);
    }
}

void LogReader::AddCall(const Fields& fields) {
    const std::string verb = fields.Text(field::kDo);
    const std::optional<Function> function = support::session_log::verb_of(verb);
    if (!function) {
        fields.Fail("there is no call \"" + verb + "\"");
    }
    Call call;
    call.number = fields.Number(field::kCall);
    call.line = line_;
    call.us = fields.Number(field::kMicroseconds, kLongest);
    call.thread = fields.Number(field::kThread);
    call.function = *function;
    ReadArguments(fields, call);
    const std::size_t place = session_.calls.size();
    if (!places_.emplace(call.number, place).second) {
        fields.Fail("there is a call " + std::to_string(call.number) + " already");
    }
    if (place == kMostCalls || in_progress_.size() == kMostInProgress) {
        fields.Fail(place == kMostCalls ? "a session may have up to 1000000 calls"
                                        : "more than 256 calls are in progress");
    }
    FindOuter(call);
    in_progress_.push_back(place);
    session_.calls.push_back(std::move(call));
}

// A call was made in a callback when its own thread is in one, or else, so that the order is kept,
// when any thread is.
void LogReader::FindOuter(Call& call) {
    const std::vector<Call>& calls = session_.calls;
    std::optional<std::size_t> outer;
    for (auto other = in_progress_.rbegin(); other != in_progress_.rend(); ++other) {
        const bool is_own = calls[*other].thread == call.thread;
        if (!calls[*other].outcome.deliveries.empty() && (is_own || !outer)) {
            outer = *other;
        }
        if (is_own) {
            break;
        }
    }
    if (outer) {
        call.within = outer;
        Call& other = session_.calls[*outer];
        other.nested.push_back({calls.size(), other.outcome.deliveries.size()});
    } else if (std::any_of(in_progress_.begin(), in_progress_.end(),
                           [&](std::size_t other) { return calls[other].thread != call.thread; })) {
        ++session_.overlaps;
    }
}

Call& LogReader::InProgress(const Fields& fields, const char* name) {
    const std::uint32_t number = fields.Number(name);
    const auto place = places_.find(number);
    if (place == places_.end() || session_.calls[place->second].has_returned) {
        fields.Fail("no call " + std::to_string(number) + " is in progress");
    }
    return session_.calls[place->second];
}

void LogReader::AddDelivery(const Fields& fields) {
    Call& call = InProgress(fields, field::kCall);
    const Json& list = fields.List(field::kCues);
    if (list.size() > support::Delivery::kMostCues) {
        fields.Fail("a delivery may have up to 50000 cues");
    }
    Delivery delivery;
    for (const Json& cue : list) {
        delivery.cues.push_back(ReadCue(fields.ObjectOf(cue)));
    }
    delivery.count = fields.NumberOr("u4CueCount", static_cast<std::uint32_t>(list.size()));
    delivery.reserved = fields.NumberOr("u4Reserved", 0);
    delivery.us = TimeOr(fields, call.us);
    call.outcome.deliveries.push_back(std::move(delivery));
}

void LogReader::AddReturn(const Fields& fields) {
    Call& call = InProgress(fields, field::kReturn);
    Outcome& outcome = call.outcome;
    call.has_returned = true;
    call.ended_us = TimeOr(fields, call.us);
    call.was_passed_on = fields.FlagOr(field::kPassed, true);
    call.ends_parser = fields.FlagOr(field::kReleased, false);
    call.has_printed = fields.Has(field::kPrinted);
    outcome.printed = call.has_printed ? fields.Bytes(field::kPrinted) : "";
    if (fields.Has(field::kException)) {
        const Fields exception = fields.Object(field::kException);
        outcome.exception =
            exception.Text(field::kType) +
            (exception.Has(field::kWhat) ? ": " + exception.Text(field::kWhat) : "");
    } else if (call.function == Function::kCreate || call.function == Function::kParse) {
        outcome.result = fields.Signed(field::kResult);
    }
    if (call.function == Function::kCreate && fields.Has(field::kParser)) {
        call.parser = fields.Number(field::kParser);
        if (call.parser == 0 || !parsers_.insert(call.parser).second) {
            fields.Fail("there is a parser " + std::to_string(call.parser) + " already");
        }
    }
    const auto place = static_cast<std::size_t>(&call - session_.calls.data());
    in_progress_.erase(std::find(in_progress_.begin(), in_progress_.end(), place));
}

Session LogReader::Finish(bool is_cut_off) {
    session_.is_cut_off = session_.is_cut_off || is_cut_off;
    for (Mistake& mistake : mistakes_) {
        const auto place = places_.find(mistake.call);
        (place != places_.end() ? session_.calls[place->second].mistakes : session_.mistakes)
            .push_back(std::move(mistake));
    }
    return std::move(session_);
}

}  // namespace

Session ReadLog(const std::string& path) {
    const std::string name = path == "-" ? "standard input" : path;
    const console::Descriptor file(path == "-" ? dup(STDIN_FILENO)
                                               : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const auto check = [&name](bool is_well) {
        if (!is_well) {
            throw console::Failure(console::kExitUsage, name + ": " + console::ErrorText(errno));
        }
    };
    check(file.valid());
    std::string text;
    std::array<char, 65536> buffer;
    int count = 0;
    while (text.size() <= kLargestLog &&
           (count = console::ReadSome(file.get(), buffer.data(), buffer.size())) > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    check(count >= 0);
    if (count > 0) {
        throw console::Failure(console::kExitUsage, name + ": a log may have up to " +
                                                        std::to_string(kLargestLog) + " bytes");
    }
    return ReadSession(name, text);
}

Session ReadSession(const std::string& name, std::string_view text) {
    LogReader reader(name);
    std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
        throw console::Failure(console::kExitUsage,
                               name + ":1: this is no session log: it has no whole line");
    }
    for (; end != std::string_view::npos; end = text.find('\n')) {
        reader.AddLine(text.substr(0, end), end + 1 == text.size());
        text.remove_prefix(end + 1);
    }
    return reader.Finish(!text.empty());
}

}  // namespace quill::replay
