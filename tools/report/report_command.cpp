#include "tools/report/report_command.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "quillcaption/quillcaption.h"
#include "tools/console/message.h"
#include "tools/host/file_writer.h"
#include "tools/replay/log_reader.h"
#include "tools/report/linked_files.h"
#include "tools/report/page.h"
#include "tools/report/session_data.h"

namespace quill::report {
namespace {

constexpr char kFooter[] =
    R"(The page is one file that needs no network: its timeline, its picture with the cue that is
shown, its list of all blocks with what became of each, and the track itself all come from what
quill check and quill cues say. A finding on line 17 has the address report.html#L17. Several tracks
begin with a table of them. Of a recorded session it shows the calls, what each fed and delivered,
and the host's mistakes, on the timeline of the cues; a mistake has an address as well.

Examples:
  quill report track.vtt -o report.html
  quill report captions/ -o report.html
  quill report --video film.mp4 track.vtt -o report.html
  quill report --against fixed.vtt track.vtt -o report.html
  quill report --log session.log -o report.html

Exit codes:
  0  the page was written, whatever it shows
  2  wrong usage, a track that cannot be read (the page shows the others), a log that cannot be read
     or is damaged, an output that cannot be written or was closed
  3  the module cannot be loaded, or it crashed, hung or ended the process)";

// One module is loaded at a time: two of one name might share what they should not.
template <typename Use>
void WithModule(const std::string& path, Use use) {
    host::DiagnosticsCapture capture(host::DiagnosticsCapture::Mode::kCollect);
    const host::ModuleHandle module(path);
    use(module, capture);
}

}  // namespace

ReportCommand::ReportCommand(CLI::App& app)
    : Command(app, "report", "Write a page that shows what a player gets of a track"),
      options_{host::TrackReader::kReadSize, 0} {
    console::CommandLine& line = command_line();
    console::AddTrackArguments(line, tracks_, "The tracks to show");
    line.AddOption("-o,--output", "FILE", output_file_,
                   "Where to write the page (default: standard output)");
    line.AddOption("--log", "LOG", log_,
                   "Show a recorded session instead of tracks; - reads standard\ninput");
    line.AddOption("--against", "TRACK", against_,
                   "Show beside the one track what came, went and moved in\nthis other one");
    line.AddOption("--against-module", "FILE", against_module_,
                   "The same with what another module makes of the track, or\n"
                   "of that of --against");
    line.AddOption("--video", "FILE", video_,
                   "The film, which the page plays in step; it is linked, not\nput into the page");
    line.AddOption("--background", "FILE", background_,
                   "A picture to show the cues upon; it is put into the page");
    line.AddNumber(
        "--chunk", "BYTES", {"a whole number of bytes", 1, kLargestTrack},
        [this](std::uint32_t bytes) {
            options_.chunk_size = bytes;
            is_played_otherwise_ = true;
        },
        "Play the track in chunks of this size (default: 65536)");
    line.AddNumber(
        "--pts", "TICKS", console::kTicks,
        [this](std::uint32_t ticks) {
            options_.video_pts = ticks;
            is_played_otherwise_ = true;
        },
        "The video's presentation time, as in quill cues");
    host::AddLimitOption(line, limit_);
    console::AddModuleOption(line, module_);
    line.SetFooter(kFooter);
}

void ReportCommand::CheckArguments() const {
    const auto reject = [](const std::string& words) {
        throw console::Failure(console::kExitUsage, "report: " + words + " (--help says more)");
    };
    if (!log_.empty()) {
        if (tracks_.AreGiven() || IsComparison()) {
            reject("--log shows a session and takes no TRACK, --files-from or --against beside it");
        }
        if (is_played_otherwise_) {
            reject("the chunks and the video time of --log are those of the session");
        }
        return;
    }
    if (!tracks_.AreGiven()) {
        reject("TRACK, --files-from or --log is required");
    }
    const bool is_one = tracks_.names.size() == 1 && tracks_.list.empty() &&
                        !std::filesystem::is_directory(tracks_.names[0]);
    if (!is_one && IsComparison()) {
        reject("--against and --against-module compare one TRACK");
    }
}

console::ExitCode ReportCommand::Run(console::Output& output) {
    CheckArguments();
    return host::RunApart(limit_, [&] { return WritePage(output); });
}

console::ExitCode ReportCommand::WritePage(console::Output& output) const {
    const bool has_file = !output_file_.empty() && output_file_ != "-";
    Json data = {{"quill", QUILLCAPTION_VERSION}, {"pts", options_.video_pts}};
    if (!video_.empty()) {
        data["video"] = LinkTo(video_, has_file ? output_file_ : "");
    }
    if (!background_.empty()) {
        data["background"] = EmbedPicture(background_);
    }
    data["against"] = IsComparison();
    std::optional<replay::Session> session;
    if (!log_.empty()) {
        session = replay::ReadLog(log_);
        data["session"] = MakeSessionData(*session);
    }
    Json& tracks = data["tracks"] = Json::array();
    const std::string module = module_.empty() ? host::FindDefaultModule() : module_;
    TrackBytes last;
    console::ExitCode code = console::kExitDone;
    if (session) {
        AddFedTracks(module, *session, tracks);
    } else {
        code = AddTracks(module, tracks, last);
    }
    if (tracks.empty()) {
        return code;
    }
    if (IsComparison()) {
        AddOther(module, tracks, last);
    }
    const std::string page = MakePage(data, !video_.empty());
    if (has_file) {
        host::WriteWhole(output_file_, page);
    } else {
        output.Write(page);
    }
    return code;
}

// A track that cannot be read does not keep the others from the page.
console::ExitCode ReportCommand::AddTracks(const std::string& module_path, Json& tracks,
                                           TrackBytes& last) const {
    console::ExitCode code = console::kExitDone;
    WithModule(module_path, [&](const auto& module, auto& capture) {
        console::TrackList list(tracks_);
        for (bool more = true; more;) {
            try {
                const std::optional<std::string> path = list.Next();
                more = path.has_value();
                if (more) {
                    last = ReadTrack(*path);
                    tracks.push_back(MakeTrackData(last, module_path, module, capture, options_));
                }
            } catch (const console::Failure& failure) {
                console::Say(failure.what());
                code = std::max(code, failure.code());
            }
        }
    });
    return code;
}

void ReportCommand::AddOther(const std::string& module_path, Json& tracks,
                             const TrackBytes& first) const {
    const std::string& other = against_module_.empty() ? module_path : against_module_;
    const TrackBytes track = against_.empty() ? first : ReadTrack(against_);
    WithModule(other, [&](const auto& module, auto& capture) {
        tracks.push_back(MakeTrackData(track, other, module, capture, options_));
    });
}

void ReportCommand::AddFedTracks(const std::string& module_path, const replay::Session& session,
                                 Json& tracks) {
    WithModule(module_path, [&](const auto& module, auto& capture) {
        for (const replay::FedTrack& fed : replay::FedTracks(session)) {
            tracks.push_back(MakeFedTrackData(session, fed, module_path, module, capture));
        }
    });
    if (tracks.empty()) {
        tracks.push_back(MakeUnfedTrackData(session, module_path));
    }
}

}  // namespace quill::report
