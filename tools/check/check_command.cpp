#include "tools/check/check_command.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "tools/check/codes.h"
#include "tools/check/track_check.h"
#include "tools/console/arguments.h"
#include "tools/console/message.h"
#include "tools/console/progress.h"
#include "tools/host/track_reader.h"

namespace quill::check {
namespace {

// Two copies of a track must fit into the memory of a 32-bit program.
constexpr std::uint32_t kLargestTrack = 256u << 20;
// Between two lines of progress.
constexpr std::chrono::milliseconds kProgressPause(200);

constexpr char kFooter[] = R"(A finding is one line, which editors can jump to:
  track.vtt:12: lost: invalid start time "abc" [Q101]; write MM:SS.mmm or HH:MM:SS.mmm
Severities:
  lost     a cue, or the whole track, does not arrive: for its own fault (Q1..), or because it
           shares a chunk with something else (Q2..)
  changed  it arrives, but not as it was written (Q3..)
  remark   it arrives, and is worth a look (Q4..)
The sums follow; every byte of the track is counted in exactly one class. In json every line is
an object of its own, and those with "sums" end a track.

Examples:
  quill check track.vtt
  quill check --chunk 65536 --fail-on changed track.vtt
  quill check --format json track.vtt
  some-stream | quill check -
  quill check --codes

Exit codes:
  0  no finding of the level of --fail-on
  1  at least one
  2  wrong usage, a track that cannot be read, an output that cannot be written or was closed
  3  the module cannot be loaded)";

std::optional<Severity> ParseFailOn(const std::string& name) {
    if (name == "never") {
        return std::nullopt;
    }
    for (const Severity severity : {Severity::kLost, Severity::kChanged, Severity::kRemark}) {
        if (name == SeverityName(severity)) {
            return severity;
        }
    }
    console::RejectArgument("--fail-on takes lost, changed, remark or never, not \"" + name + "\"");
}

bool WantsColour() {
    const char* const no_colour = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && (no_colour == nullptr || *no_colour == '\0');
}

std::string ReadAll(host::TrackReader& reader, console::Progress& progress) {
    std::string bytes;
    while (const std::optional<host::Chunk> chunk = reader.Next()) {
        if (reader.offset() > kLargestTrack) {
            throw console::Failure(console::kExitUsage,
                                   reader.name() + ": a track may have up to " +
                                       std::to_string(kLargestTrack) + " bytes");
        }
        bytes.append(chunk->data.get(), chunk->size);
        if (progress.IsDue()) {
            progress.Show(reader.name() + ": " + std::to_string(reader.offset() >> 10) +
                          " KiB read");
        }
    }
    return bytes;
}

}  // namespace

CheckCommand::CheckCommand(CLI::App& app)
    : command_line_(app, "check", "Say what becomes of every block of a track") {
    console::CommandLine& line = command_line_;
    console::AddTrackArguments(line, tracks_, "The tracks to check");
    console::AddTextOrJson(line, in_json_, "How findings are printed");
    line.AddOption(
        "--chunk", "BYTES",
        [this](const std::string& text) {
            chunk_size_ = console::ParseWholeNumber("--chunk", "a whole number of bytes", text, 1,
                                                    kLargestTrack);
        },
        "Play the track in chunks of this size (default: all of\n"
        "it in one); the first one always holds the first line");
    line.AddOption(
        "--fail-on", "LEVEL", [this](const std::string& name) { fail_on_ = ParseFailOn(name); },
        "What ends in exit code 1: lost (default), changed (or\n"
        "lost), remark (any finding), or never");
    line.AddFlag("--codes", only_codes_, "List all codes with cause and mend, and do nothing else");
    line.AddFlag("--quiet", quiet_, "Print no sums, and show no progress");
    console::AddModuleOption(line, module_);
    line.SetFooter(kFooter);
}

bool CheckCommand::IsChosen() const {
    return command_line_.IsChosen();
}

console::ExitCode CheckCommand::Run(console::Output& output) {
    const std::unique_ptr<Report> report = MakeReport(output);
    if (only_codes_) {
        return PrintCodes(*report);
    }
    if (!tracks_.AreGiven()) {
        throw console::Failure(console::kExitUsage,
                               "check: TRACK or --files-from is required (--help says more)");
    }
    try {
        return CheckTracks(*report);
    } catch (const console::OutputError& error) {
        if (!error.closed()) {
            throw;
        }
        if (!quiet_) {
            console::Say("standard output was closed; the rest was not checked");
        }
        return error.code();
    }
}

std::unique_ptr<Report> CheckCommand::MakeReport(console::Output& output) const {
    return in_json_ ? MakeJsonReport(output) : MakeTextReport(output, WantsColour());
}

console::ExitCode CheckCommand::PrintCodes(Report& report) const {
    std::for_each(Codes(), Codes() + CodeCount(), [&](const Code& code) { report.AddCode(code); });
    report.Flush();
    return console::kExitDone;
}

// A track that cannot be read does not keep the others from being checked.
console::ExitCode CheckCommand::CheckTracks(Report& report) const {
    const std::string path = module_.empty() ? host::FindDefaultModule() : module_;
    host::DiagnosticsCapture capture(host::DiagnosticsCapture::Mode::kCollect);
    const host::ModuleHandle module(path);
    console::ExitCode code = console::kExitDone;
    console::TrackList tracks(tracks_);
    for (;;) {
        try {
            const std::optional<std::string> track = tracks.Next();
            if (!track) {
                return code;
            }
            if (Fails(Check(module, capture, *track, report)) && code == console::kExitDone) {
                code = console::kExitTrack;
            }
        } catch (const console::OutputError&) {
            throw;
        } catch (const console::Failure& failure) {
            console::Say(failure.what());
            code = std::max(code, failure.code());
        }
    }
}

Sums CheckCommand::Check(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                         const std::string& track, Report& report) const {
    console::Progress progress(!quiet_, kProgressPause);
    host::TrackReader reader(track, std::nullopt);
    const std::string bytes = ReadAll(reader, progress);
    TrackReport track_report(reader.name(), report, progress);
    TrackCheck check(module, capture, bytes, chunk_size_, track_report);
    check.Run(static_cast<std::size_t>(reader.offset()));
    progress.Wipe();
    if (quiet_) {
        report.Flush();
    } else {
        report.AddSums(reader.name(), track_report.sums());
    }
    return track_report.sums();
}

bool CheckCommand::Fails(const Sums& sums) const {
    if (!fail_on_) {
        return false;
    }
    for (const Severity severity : {Severity::kRemark, Severity::kChanged, Severity::kLost}) {
        if (severity >= *fail_on_ && sums.Count(severity) > 0) {
            return true;
        }
    }
    return false;
}

}  // namespace quill::check
