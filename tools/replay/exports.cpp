#include "tools/replay/exports.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "support/notation.h"
#include "tools/console/escape.h"
#include "tools/console/failure.h"

namespace quill::replay {
namespace {

// Lines of a case file, one behind the other.
class CaseWriter {
  public:
    explicit CaseWriter(const Session& session) : session_(session) {
        text_ = "== session\nThe calls of " +
                console::Escape(session.name, console::LineFeeds::kEscape) + ".\n";
        head_size_ = text_.size();
    }

    // With the calls in its callback behind it, in the order of the play.
    void Add(const Call& call) {
        std::vector<Step> steps = {{&call, false}};
        while (!steps.empty()) {
            const Step step = steps.back();
            steps.pop_back();
            if (step.is_over) {
                Use(step.call->parser);
                AddLine("release");
                continue;
            }
            if (step.call->was_passed_on && step.call->has_returned) {
                AddOne(*step.call);
            }
            if (step.call->ends_parser) {
                steps.push_back({step.call, true});
            }
            const std::vector<Nested>& nested = step.call->nested;
            std::for_each(nested.rbegin(), nested.rend(), [&](const Nested& one) {
                steps.push_back({&session_.calls[one.call], false});
            });
        }
    }

    std::string Finish() {
        if (text_.size() == head_size_) {
            throw console::Failure(console::kExitUsage,
                                   session_.name + ": no call reached the module and returned");
        }
        return std::move(text_);
    }

  private:
    struct Step {
        const Call* call;
        bool is_over;  // only the release that was put off until then is left
    };

    [[noreturn]] void Fail(const Call& call, const std::string& why) const {
        throw console::Failure(console::kExitUsage, Where(session_, call) + ": " + why);
    }

    void AddOne(const Call& call) {
        CheckThatItCan(call);
        if (call.function != Function::kCreate) {
            Use(call.parser);
            AddLine(InCaseWords(call));
        } else if (call.has_pointer) {
            AddLine("create " + Name(call.parser));
            used_ = call.parser;
        } else {
            AddLine("create-null");
        }
        for (const std::string& line : DescribeOutcome(call.function, call.outcome)) {
            AddLine("  " + line);
        }
    }

    // Cases make no calls in callbacks. They may come behind the outer call unless that changes
    // what comes of them.
    void CheckThatItCan(const Call& call) const {
        if (call.within && call.function == Function::kParse && call.parser != 0 &&
            call.parser == session_.calls[*call.within].parser) {
            Fail(call, "no case can feed a parser within its own callback");
        }
        if (call.function == Function::kCreate && call.has_pointer && call.parser == 0) {
            Fail(call, "no case can have a parser refused");
        }
        if (!call.has_printed) {
            Fail(call, "what it printed was not recorded");
        }
    }

    static std::string Name(std::uint32_t parser) { return "p" + std::to_string(parser); }

    // The module refuses 0, as it refuses any handle that is not live.
    void Use(std::uint32_t parser) {
        if (used_ != parser) {
            AddLine("use " + (parser != 0 ? Name(parser) : "0"));
            used_ = parser;
        }
    }

    static std::string InCaseWords(const Call& call) {
        switch (call.function) {
            case Function::kParse:
                return !call.has_pointer    ? "feed-null " + std::to_string(call.size)
                       : call.bytes.empty() ? "feed-empty"
                                            : "feed " + support::quote(call.bytes);
            case Function::kSetEventNty:
                return call.has_pointer ? "register 0" : "register-null 0";
            case Function::kGetParseResult:
                return "take";
            case Function::kSetVideoPts:
                return "pts " + std::to_string(call.ticks);
            case Function::kCreate:
            case Function::kRelease:
                break;
        }
        return "release";
    }

    void AddLine(const std::string& line) { text_ += line + "\n"; }

    const Session& session_;
    std::string text_;
    std::size_t head_size_ = 0;          // of what stands before the calls
    std::optional<std::uint32_t> used_;  // what the calls go to
};

}  // namespace

std::string TrackName(const std::string& log, std::uint32_t parser) {
    return log + " (parser " + std::to_string(parser) + ")";
}

std::vector<FedTrack> FedTracks(const Session& session) {
    std::map<std::uint32_t, FedTrack> tracks;
    for (const Call& call : session.calls) {
        FedTrack& track = tracks[call.parser];
        if (call.function == Function::kParse && !call.bytes.empty()) {
            track.bytes += call.bytes;
            track.sizes.push_back(call.bytes.size());
        } else if (call.function == Function::kSetVideoPts && track.sizes.empty()) {
            track.video_time = call.ticks;
        }
    }
    std::vector<FedTrack> fed;
    for (auto& [number, track] : tracks) {
        track.parser = number;
        if (number != 0 && !track.sizes.empty()) {
            fed.push_back(std::move(track));
        }
    }
    return fed;
}

std::vector<FedTrack> FedTracks(const Session& session, std::uint32_t parser) {
    std::vector<FedTrack> fed = FedTracks(session);
    fed.erase(std::remove_if(fed.begin(), fed.end(),
                             [parser](const FedTrack& track) {
                                 return parser != 0 && parser != track.parser;
                             }),
              fed.end());
    if (fed.empty()) {
        throw console::Failure(
            console::kExitUsage,
            session.name + ": " +
                (parser == 0 ? "no parser" : "no parser " + std::to_string(parser)) +
                " was fed anything (--show lists the calls)");
    }
    return fed;
}

std::string WriteCase(const Session& session) {
    CaseWriter writer(session);
    for (const Call& call : session.calls) {
        if (!call.within) {
            writer.Add(call);
        }
    }
    return writer.Finish();
}

}  // namespace quill::replay
