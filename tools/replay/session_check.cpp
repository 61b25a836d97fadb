#include "tools/replay/session_check.h"

#include <memory>
#include <string_view>

#include "tools/check/report.h"
#include "tools/check/track_checker.h"
#include "tools/console/message.h"
#include "tools/console/progress.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/isolated_run.h"
#include "tools/host/module_handle.h"

namespace quill::replay {
namespace {

// What the child writes behind everything else.
constexpr char kNothingLost = '0';
constexpr char kLost = '1';

void CheckInChild(const CheckRequest& request, const FedTrack& track, const std::string& name,
                  host::Channel& channel) {
    host::DiagnosticsCapture capture(host::DiagnosticsCapture::Mode::kCollect);
    const host::ModuleHandle module(request.module);
    const std::unique_ptr<check::Report> report =
        request.as_json ? check::MakeJsonReport() : check::MakeTextReport(false);
    check::CheckOptions options = {{report.get(), report->Folds(), check::SumsWanted::kOfFindings},
                                   {},
                                   track.video_time,
                                   {},
                                   {},
                                   false};
    check::TrackChecker checker(module, capture, options);
    console::Progress progress(false, console::kProgressPause);
    const check::Sums sums = checker.CheckFed(
        name, track.bytes, track.sizes,
        [&channel](std::string_view bytes) { channel.Write(bytes); }, progress);
    channel.Write(std::string(1, sums.Count(check::Severity::kLost) != 0 ? kLost : kNothingLost));
}

}  // namespace

console::ExitCode CheckTracks(const CheckRequest& request, const std::vector<FedTrack>& tracks,
                              console::Output& output) {
    console::ExitCode code = console::kExitDone;
    for (const FedTrack& track : tracks) {
        const std::string name = TrackName(request.log, track.parser);
        host::IsolatedEnd end = host::RunIsolated(
            [&](host::Channel& channel) { CheckInChild(request, track, name, channel); },
            request.timeout);
        if (end.kind != host::IsolatedEnd::Kind::kDone || end.written.empty()) {
            output.Write(end.written);
            console::Say(name + ": the process that checked it " + host::DescribeEnd(end));
            code = console::kExitTrack;
            continue;
        }
        if (end.written.back() == kLost) {
            code = console::kExitTrack;
        }
        end.written.pop_back();
        output.Write(end.written);
    }
    return code;
}

}  // namespace quill::replay
