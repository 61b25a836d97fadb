#include "tools/report/track_data.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/check/codes.h"
#include "tools/check/report.h"
#include "tools/console/failure.h"
#include "tools/console/progress.h"
#include "tools/cues/cue_format.h"
#include "tools/cues/track_player.h"
#include "tools/host/parser_handle.h"
#include "tools/host/track_reader.h"
#include "tools/report/base64.h"
#include "tools/report/delivered_cues.h"

namespace quill::report {
namespace {

// The bytes that may be made of a track besides its own.
std::size_t BytesFor(std::size_t track_size) {
    // The track itself comes to 4/3 of its bytes, the page around all tracks to less than kPage.
    constexpr std::size_t kPage = 150 << 10;
    constexpr std::size_t kLeast = 256 << 10;
    const std::size_t most = track_size * 5 / 3;
    return std::max(most, kPage + kLeast) - kPage;
}

class CueList : public host::CueSink {
  public:
    void Add(const WebvttCueNode& cue) override {
        cues.push_back(console::ParseJson(cues::FormatAsJson(cue, cues.size() + 1)));
    }
    void Flush() override {}

    std::vector<Json> cues;
};

// Takes apart what quill check prints.
class CheckLines {
  public:
    // `change` gets each block before it is kept.
    explicit CheckLines(std::function<void(Json& block)> change) : change_(std::move(change)) {}
    CheckLines(const CheckLines&) = delete;
    CheckLines& operator=(const CheckLines&) = delete;

    void Read(std::string_view lines) {
        while (!lines.empty()) {
            const std::size_t end = lines.find('\n');
            Take(console::ParseJson(lines.substr(0, end)));
            lines.remove_prefix(end + 1);
        }
    }

    Columns findings;
    Columns blocks;
    Json sums = Json::object();
    std::set<std::string> codes;

  private:
    void Take(Json object) {
        object.erase("track");
        if (object.contains("code")) {
            codes.insert(object["code"].get<std::string>());
            findings.Add(object);
        } else if (object.contains("block")) {
            change_(object);
            blocks.Add(object);
        } else {
            sums = std::move(object["sums"]);
        }
    }

    std::function<void(Json& block)> change_;
};

void CheckTrack(const TrackBytes& track, const host::ModuleHandle& module,
                host::DiagnosticsCapture& capture, const check::Report& report,
                const PlayOptions& options, CheckLines& lines) {
    const check::CheckOptions check_options{{&report, false, check::SumsWanted::kInFull, true},
                                            options.chunk_size,
                                            options.video_pts,
                                            std::nullopt,
                                            std::nullopt,
                                            false};
    check::TrackChecker checker(module, capture, check_options);
    console::Progress progress(false, console::kProgressPause);
    const auto read = [&lines](std::string_view bytes) { lines.Read(bytes); };
    if (!track.sizes.empty()) {
        checker.CheckFed(track.name, track.bytes, track.sizes, read, progress);
    } else {
        host::TrackReader reader(track.name, track.bytes, options.chunk_size);
        checker.Check(reader, read, progress);
    }
}

std::vector<Json> PlayTrack(const TrackBytes& track, const host::ModuleHandle& module,
                            host::DiagnosticsCapture& capture, const PlayOptions& options) {
    const host::DiagnosticsCapture::Mute mute(capture);
    host::TrackReader reader(track.name, track.bytes, options.chunk_size);
    CueList sink;
    cues::TrackPlayer player(module, capture, reader, sink);
    player.BeQuiet();
    player.SetVideoPts(options.video_pts);
    player.Play();
    return std::move(sink.cues);
}

// As a right host would have fed the same chunks, to the end.
std::vector<Json> PlayFed(const replay::FedTrack& fed, const host::ModuleHandle& module,
                          host::DiagnosticsCapture& capture) {
    const host::DiagnosticsCapture::Mute mute(capture);
    host::ParserHandle parser(module, capture);
    parser.SetVideoPts(fed.video_time);
    CueList sink;
    const auto feed = [&](std::string_view bytes) {
        const host::Chunk chunk(bytes.data(), static_cast<unsigned int>(bytes.size()), 0);
        try {
            parser.Feed(chunk.data.get(), chunk.size);
        } catch (const host::ModuleThrew&) {
            // What is lost by that is what quill check finds.
        }
        parser.Deliver(sink);
    };
    std::string_view rest = fed.bytes;
    for (const std::size_t size : fed.sizes) {
        feed(rest.substr(0, size));
        rest.remove_prefix(size);
    }
    feed(host::kClosingLineFeeds);
    return std::move(sink.cues);
}

// Null for a name that the loader looks up by itself.
Json SizeOf(const std::string& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return error ? Json(nullptr) : Json(size);
}

Json PutTogether(const TrackBytes& track, const std::string& module_path,
                 const check::Report& report, const CheckLines& lines,
                 const std::vector<Json>& cue_list) {
    Columns cues;
    for (const Json& cue : cue_list) {
        cues.Add(cue);
    }
    // Whatever comes first leaves something for what follows.
    const std::size_t most = BytesFor(track.bytes.size());
    Json findings = lines.findings.Pack(most / 4);
    const std::size_t without_findings = most - BytesOf(findings);
    Json blocks = lines.blocks.Pack(without_findings / 2);
    Json packed_cues = cues.Pack(without_findings - BytesOf(blocks));
    Json codes = Json::array();
    for (const std::string& number : lines.codes) {
        codes.push_back(console::ParseJson(report.Format(*check::FindCode(number))));
    }
    return {{"name", track.name},
            {"module", module_path},
            {"module_size", SizeOf(module_path)},
            {"sums", lines.sums},
            {"codes", std::move(codes)},
            {"findings", std::move(findings)},
            {"blocks", std::move(blocks)},
            {"cues", std::move(packed_cues)},
            {"source", Base64(track.bytes)}};
}

// A block refers to the cues of a play; here to those that came.
void ReferToDelivered(Json& block, const std::vector<Json>& played,
                      const std::vector<std::size_t>& places) {
    if (!block.contains("cue")) {
        return;
    }
    const auto cue = block["cue"].get<std::size_t>() - 1;
    if (cue < places.size() && places[cue] != 0) {
        block["cue"] = places[cue];
        return;
    }
    block.erase("cue");
    block["block"] = "not_taken";
    if (cue < played.size()) {
        block["start"] = played[cue]["dStartTime"];
        block["end"] = played[cue]["dEndTime"];
    }
}

}  // namespace

TrackBytes ReadTrack(const std::string& path) {
    host::TrackReader reader(path, std::nullopt);
    TrackBytes track{reader.name(), reader.ReadAll(kLargestTrack, [] {})};
    track.bytes.resize(static_cast<std::size_t>(reader.offset()));  // without an added line end
    return track;
}

Json MakeTrackData(const TrackBytes& track, const std::string& module_path,
                   const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                   const PlayOptions& options) {
    const std::unique_ptr<check::Report> report = check::MakeJsonReport();
    CheckLines lines([](Json&) {});
    CheckTrack(track, module, capture, *report, options, lines);
    const std::vector<Json> cues = PlayTrack(track, module, capture, options);
    capture.Forget();
    return PutTogether(track, module_path, *report, lines, cues);
}

Json MakeFedTrackData(const replay::Session& session, const replay::FedTrack& fed,
                      const std::string& module_path, const host::ModuleHandle& module,
                      host::DiagnosticsCapture& capture) {
    const TrackBytes track = {replay::TrackName(session.name, fed.parser), fed.bytes, fed.sizes};
    if (track.bytes.size() > kLargestTrack) {
        throw console::Failure(console::kExitUsage, track.name + ": a track may have up to " +
                                                        std::to_string(kLargestTrack) + " bytes");
    }
    const std::vector<Json> delivered = DeliveredCues(session, fed.parser);
    const std::vector<Json> played = PlayFed(fed, module, capture);
    const std::vector<std::size_t> places = FindDelivered(played, delivered);
    const std::unique_ptr<check::Report> report = check::MakeJsonReport();
    CheckLines lines([&](Json& block) { ReferToDelivered(block, played, places); });
    CheckTrack(track, module, capture, *report, {0, fed.video_time}, lines);
    capture.Forget();
    Json data = PutTogether(track, module_path, *report, lines, delivered);
    data["parser"] = fed.parser;
    data["strays"] =
        delivered.size() - (places.size() - static_cast<std::size_t>(std::count(
                                                places.begin(), places.end(), std::size_t{0})));
    return data;
}

Json MakeUnfedTrackData(const replay::Session& session, const std::string& module_path) {
    const std::unique_ptr<check::Report> report = check::MakeJsonReport();
    CheckLines lines([](Json&) {});
    lines.Read(report->Format(session.name, check::Sums(), true));
    Json data = PutTogether({session.name, ""}, module_path, *report, lines, {});
    data["parser"] = 0;
    data["strays"] = 0;
    return data;
}

}  // namespace quill::report
