#include "tools/replay/replay_run.h"

#include <algorithm>
#include <string_view>
#include <thread>
#include <utility>

#include "tools/host/isolated_run.h"
#include "tools/host/module_handle.h"
#include "tools/host/printed_text.h"
#include "tools/replay/session_player.h"

namespace quill::replay {
namespace {

// What the child tells, line by line: a word and what it is about.
constexpr std::string_view kCall = "call ";      // begins; its place
constexpr std::string_view kAgreed = "agreed ";  // is over and came out as recorded; its place
constexpr std::string_view kExpected = "expected ";
constexpr std::string_view kGot = "got ";
constexpr std::string_view kEnd = "end ";  // all is over

using Lines = std::vector<std::string>;

std::string Tell(std::string_view word, const std::string& what) {
    return std::string(word) + what + "\n";
}

// A module may have printed millions.
std::string TellRest(std::string_view word, Lines::const_iterator begin,
                     Lines::const_iterator end) {
    constexpr std::ptrdiff_t kMostLines = 40;
    std::string told;
    const auto told_end = begin + std::min(end - begin, kMostLines);
    std::for_each(begin, told_end, [&](const std::string& line) { told += Tell(word, line); });
    if (told_end != end) {
        told += Tell(word, "(and " + std::to_string(end - told_end) + " more)");
    }
    return told;
}

// When a call was made, seen from the first one.
std::chrono::microseconds TimeOf(const Session& session, const Call& call) {
    const std::uint64_t first = session.calls.front().us;
    return std::chrono::microseconds(call.us > first ? call.us - first : 0);
}

// Compares in the child, at once, and tells the first difference.
class Comparison : public PlaySink {
  public:
    Comparison(const Session& session, bool keeps_pace, host::Channel& channel)
        : session_(session), keeps_pace_(keeps_pace), channel_(channel) {}

    void Begin(const Call& call) override {
        if (keeps_pace_) {
            std::this_thread::sleep_until(start_ + TimeOf(session_, call));
        }
        channel_.Write(Tell(kCall, PlaceOf(call)));
    }

    bool End(const Call& call, const Outcome& outcome) override {
        // The host ended within a call that never returned: nobody knows what that came to.
        const Lines expected = DescribeOutcome(call.function, call.outcome);
        Outcome known = outcome;
        if (!call.has_printed) {
            known.printed.clear();
        }
        const Lines got = DescribeOutcome(call.function, known);
        if (!call.has_returned || expected == got) {
            channel_.Write(call.has_returned ? Tell(kAgreed, PlaceOf(call)) : "");
            return true;
        }
        const auto [expected_rest, got_rest] =
            std::mismatch(expected.begin(), expected.end(), got.begin(), got.end());
        channel_.Write(TellRest(kExpected, expected_rest, expected.end()) +
                       TellRest(kGot, got_rest, got.end()));
        return false;
    }

  private:
    std::string PlaceOf(const Call& call) const {
        return std::to_string(&call - session_.calls.data());
    }

    using Clock = std::chrono::steady_clock;

    const Session& session_;
    bool keeps_pace_;
    host::Channel& channel_;
    Clock::time_point start_ = Clock::now();
};

void PlayInChild(const Session& session, const ReplayOptions& options, host::Channel& channel) {
    host::PrintedText printed;
    {
        const host::ModuleHandle module(options.module);
        const support::Methods methods = support::methods_at(&module.methods());
        printed.Take();
        Comparison comparison(session, options.keeps_pace, channel);
        const auto take = [&printed] { return printed.Take(); };
        SessionPlayer player(session, methods, take, comparison);
        player.Play();
    }
    channel.Write(Tell(kEnd, ""));
}

// What the child told.
Verdict ReadReport(const Session& session, std::string_view report, bool& has_ended) {
    Verdict verdict;
    while (!report.empty()) {
        const std::string_view line = report.substr(0, report.find('\n'));
        const std::size_t word = std::min(line.find(' '), line.size() - 1) + 1;
        const std::string what(line.substr(word));
        if (line.substr(0, word) == kCall) {
            verdict.call = &session.calls.at(std::stoul(what));
        } else if (line.substr(0, word) == kAgreed) {
            ++verdict.agreed;
        } else if (line.substr(0, word) == kExpected) {
            verdict.expected.push_back(what);
        } else if (line.substr(0, word) == kGot) {
            verdict.got.push_back(what);
        }
        has_ended = has_ended || line == kEnd;
        report.remove_prefix(std::min(line.size() + 1, report.size()));
    }
    return verdict;
}

}  // namespace

Verdict Replay(const Session& session, const ReplayOptions& options) {
    std::chrono::milliseconds timeout = options.timeout;
    if (options.keeps_pace && !session.calls.empty()) {
        timeout += std::chrono::duration_cast<std::chrono::milliseconds>(
            TimeOf(session, session.calls.back()));
    }
    const host::IsolatedEnd end = host::RunIsolated(
        [&](host::Channel& channel) { PlayInChild(session, options, channel); }, timeout);
    bool has_ended = false;
    Verdict verdict = ReadReport(session, end.written, has_ended);
    if (!has_ended || end.kind != host::IsolatedEnd::Kind::kDone) {
        verdict.end = host::DescribeEnd(end);
    }
    return verdict;
}

}  // namespace quill::replay
