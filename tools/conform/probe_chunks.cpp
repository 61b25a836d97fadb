// One track in every way that it can be cut.
#include "tools/conform/probes.h"

namespace quill::conform {
namespace {

// The first line is fed with the rest of its chunk: it must come whole.
constexpr std::string_view kFirstLine = "WEBVTT - chunks\n";
constexpr std::string_view kRest =
    "Region: id=fred width=40%\nX-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n\n"
    "one\n00:01.000 --> 00:02.000 align:end line:10%\nHello <b>big</b>\nworld &amp; all\n\n\n"
    "00:03.000 --> 00:04.000\nagain\n\n"
    "00:05.000 --> zz\nlost\n\n"
    "00:06.000 --> 00:07.000 size:50%\n<c.red>last</c>\n\n";

using Lines = std::vector<std::string>;

// The rest of the track with other line ends. Both chunks of a header line may be cut anywhere:
// two pieces are joined, and only three or more lose something.
std::string WithLineEnds(std::string_view line_end) {
    std::string text;
    for (const char byte : kRest) {
        text += byte == '\n' ? std::string(line_end) : std::string(1, byte);
    }
    return text;
}

class Collector {
  public:
    explicit Collector(ProbeBench& bench) : bench_(bench) {
        bench.methods().pfnCreate(&handle_);
        bench.methods().pfnSetEventNty(handle_, this, &Collector::Collect);
        bench.Feed(handle_, kFirstLine);
    }
    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;
    ~Collector() { bench_.methods().pfnRelease(handle_); }

    void Feed(std::string_view piece) { bench_.Feed(handle_, piece); }

    const Lines& Cues() {
        bench_.methods().pfnGetParseResult(handle_);
        return cues_;
    }

  private:
    static void Collect(WEBVTT_EVENT_T /*event*/, void* tag, void* info) {
        for (const support::CueRecord& cue : support::Delivery(info).cues) {
            static_cast<Collector*>(tag)->cues_.push_back(support::describe(cue));
        }
    }

    ProbeBench& bench_;
    unsigned int handle_ = 0;
    Lines cues_;
};

const Lines& Wanted() {
    static const Lines kWanted = {
        R"(cue 11 12 "Hello big\nworld & all\n" line=10 snap=0 position=100 align=2)",
        R"(cue 13 14 "again\n")",
        R"(cue 16 17 "last\n" size=50)",
    };
    return kWanted;
}

void CheckBorders(ProbeBench& bench, std::string_view line_end) {
    const std::string track = WithLineEnds(line_end);
    for (std::size_t border = 1; border < track.size(); ++border) {
        bench.Doing("feeding two chunks, the first of " + std::to_string(border) + " bytes");
        Collector collector(bench);
        collector.Feed(std::string_view(track).substr(0, border));
        collector.Feed(std::string_view(track).substr(border));
        if (collector.Cues() != Wanted()) {
            bench.Complain("other cues with a border after " + std::to_string(border) + " bytes");
            return;
        }
        bench.Printed();
    }
}

void CheckCueSizes(ProbeBench& bench) {
    const std::size_t cues = kRest.find("one\n");
    for (std::size_t size = 1; size < kRest.size() - cues; ++size) {
        Collector collector(bench);
        collector.Feed(kRest.substr(0, cues));
        for (std::size_t at = cues; at < kRest.size(); at += size) {
            collector.Feed(kRest.substr(at, size));
        }
        if (collector.Cues() != Wanted()) {
            bench.Complain("other cues with chunks of " + std::to_string(size) + " bytes");
            return;
        }
        bench.Printed();
    }
}

}  // namespace

std::vector<Case> ChunkProbes() {
    constexpr ProbesOf kProbe{"chunks"};
    using Bench = ProbeBench;
    return {
        kProbe("every-border-lf", "A track cut in two anywhere gives the same cues.",
               [](Bench& bench) { CheckBorders(bench, "\n"); }),
        kProbe("every-border-crlf", "So does one whose lines end in CR LF.",
               [](Bench& bench) { CheckBorders(bench, "\r\n"); }),
        kProbe("every-border-cr", "So does one whose lines end in CR.",
               [](Bench& bench) { CheckBorders(bench, "\r"); }),
        kProbe("every-size", "Cues in chunks of any size give the same cues.", CheckCueSizes),
    };
}

}  // namespace quill::conform
