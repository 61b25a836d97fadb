#include "tools/cues/cues_command.h"

#include "tools/console/message.h"
#include "tools/cues/cue_printer.h"
#include "tools/cues/track_player.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"
#include "tools/host/recording.h"
#include "tools/host/track_reader.h"

namespace quill::cues {
namespace {

// Two copies of a chunk must fit into the memory of a 32-bit program.
constexpr std::uint32_t kLargestChunk = 256u << 20;

constexpr char kFooter[] = R"(Formats:
  text  made for reading: times, the settings that differ from their defaults, the text
  json  one object a line, in ASCII: every field of the cue record by its own name; bytes
        that are not UTF-8 become U+FFFD
  srt   SubRip: no settings, negative times become zero, blank lines of the text are dropped
In text and srt, control characters and bytes that are not UTF-8 are shown as \xNN.

Examples:
  quill cues track.vtt
  quill cues --format json --chunk 1460 --pts 180000 track.vtt
  some-stream | quill cues -
  quill cues --quiet --format srt track.vtt > track.srt

Exit codes:
  0  the track was read to its end (also when a warning named lost cues)
  1  the track was rejected, or the module threw
  2  wrong usage, a track that cannot be read, an output that cannot be written or was closed
  3  the module cannot be loaded, or it crashed, hung or ended the process)";

CueFormatter ParseFormat(const std::string& name) {
    static constexpr CueFormatter kFormatters[] = {FormatAsText, FormatAsJson, FormatAsSrt};
    return kFormatters[console::ParseChoice("--format", {"text", "json", "srt"}, name)];
}

}  // namespace

CuesCommand::CuesCommand(CLI::App& app)
    : Command(app, "cues", "Print the cues of a track as a player gets them") {
    console::CommandLine& line = command_line();
    line.AddRequired("TRACK", track_, "The track to read; - reads standard input as it arrives");
    line.AddOption(
        "--format", "FORMAT", [this](const std::string& name) { format_ = ParseFormat(name); },
        "How cues are printed: text (default), json or srt");
    line.AddNumber(
        "--chunk", "BYTES", {"a whole number of bytes", 1, kLargestChunk},
        [this](std::uint32_t bytes) { chunk_size_ = bytes; },
        "Feed chunks of this size (default: what a read returns,\n"
        "up to 65536); the first one always holds the whole first line");
    line.AddNumber(
        "--pts", "TICKS", console::kTicks, [this](std::uint32_t ticks) { video_pts_ = ticks; },
        "The video's presentation time, 90000 ticks a second; its\n"
        "whole seconds are subtracted from all cue times");
    line.AddOption("--record", "LOG", record_,
                   "Write all calls and what came of them to this file, for\n"
                   "quill replay");
    host::AddLimitOption(line, limit_);
    console::AddModuleArguments(line, module_);
    line.SetFooter(kFooter);
}

console::ExitCode CuesCommand::Run(console::Output& output) {
    return host::RunApart(limit_, [&] { return Play(output); });
}

console::ExitCode CuesCommand::Play(console::Output& output) const {
    host::TrackReader track(track_, chunk_size_);
    const std::string path = module_.path.empty() ? host::FindDefaultModule() : module_.path;
    host::DiagnosticsCapture capture(module_.quiet ? host::DiagnosticsCapture::Mode::kDrop
                                                   : host::DiagnosticsCapture::Mode::kShow);
    const host::ModuleHandle module(record_.empty() ? path : host::RecordTo(record_, path));
    host::CallNote::Own().module.Set(path);  // which the guard of a recording calls
    CuePrinter printer(output, format_);
    try {
        TrackPlayer player(module, capture, track, printer);
        player.SetVideoPts(video_pts_);
        return player.Play() ? console::kExitDone : console::kExitTrack;
    } catch (const console::OutputError& error) {
        const std::string written = "; cues written: " + std::to_string(printer.count());
        if (!error.closed()) {
            throw console::Failure(error.code(), error.what() + written);
        }
        if (!module_.quiet) {
            console::Say("standard output was closed" + written +
                         "; the rest of the track was not read");
        }
        return error.code();
    }
}

}  // namespace quill::cues
