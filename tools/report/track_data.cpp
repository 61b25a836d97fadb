#include "tools/report/track_data.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>

#include "tools/check/codes.h"
#include "tools/check/report.h"
#include "tools/console/progress.h"
#include "tools/cues/cue_format.h"
#include "tools/cues/track_player.h"
#include "tools/host/track_reader.h"
#include "tools/report/base64.h"

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

class CueColumns : public host::CueSink {
  public:
    void Add(const WebvttCueNode& cue) override {
        cues.Add(Json::parse(cues::FormatAsJson(cue, cues.size() + 1)));
    }
    void Flush() override {}

    Columns cues;
};

// Takes apart what quill check prints.
class CheckLines {
  public:
    CheckLines() = default;
    CheckLines(const CheckLines&) = delete;
    CheckLines& operator=(const CheckLines&) = delete;

    void Read(std::string_view lines) {
        while (!lines.empty()) {
            const std::size_t end = lines.find('\n');
            Take(Json::parse(lines.substr(0, end)));
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
            blocks.Add(object);
        } else {
            sums = std::move(object["sums"]);
        }
    }
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
    host::TrackReader reader(track.name, track.bytes, options.chunk_size);
    checker.Check(
        reader, [&](std::string_view bytes) { lines.Read(bytes); }, progress);
}

Columns PlayTrack(const TrackBytes& track, const host::ModuleHandle& module,
                  host::DiagnosticsCapture& capture, const PlayOptions& options) {
    const host::DiagnosticsCapture::Mute mute(capture);
    host::TrackReader reader(track.name, track.bytes, options.chunk_size);
    CueColumns sink;
    cues::TrackPlayer player(module, capture, reader, sink);
    player.BeQuiet();
    player.SetVideoPts(options.video_pts);
    player.Play();
    return std::move(sink.cues);
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
    CheckLines lines;
    CheckTrack(track, module, capture, *report, options, lines);
    const Columns cues = PlayTrack(track, module, capture, options);
    capture.Forget();
    // Whatever comes first leaves something for what follows.
    const std::size_t most = BytesFor(track.bytes.size());
    Json findings = lines.findings.Pack(most / 4);
    const std::size_t without_findings = most - findings.dump().size();
    Json blocks = lines.blocks.Pack(without_findings / 2);
    Json packed_cues = cues.Pack(without_findings - blocks.dump().size());
    Json codes = Json::array();
    for (const std::string& number : lines.codes) {
        codes.push_back(Json::parse(report->Format(*check::FindCode(number))));
    }
    return {{"name", track.name},
            {"module", module_path},
            {"sums", lines.sums},
            {"codes", std::move(codes)},
            {"findings", std::move(findings)},
            {"blocks", std::move(blocks)},
            {"cues", std::move(packed_cues)},
            {"source", Base64(track.bytes)}};
}

}  // namespace quill::report
