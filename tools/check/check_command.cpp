#include "tools/check/check_command.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <thread>

#include "tools/check/code_page.h"
#include "tools/check/codes.h"
#include "tools/check/track_run.h"
#include "tools/console/arguments.h"
#include "tools/console/message.h"
#include "tools/host/module_handle.h"

namespace quill::check {
namespace {

constexpr std::uint32_t kMostJobs = 256;

constexpr char kFooter[] = R"(A finding is one line, which editors can jump to:
  track.vtt:12:1: lost: invalid start time "abc" [Q101]; write MM:SS.mmm or HH:MM:SS.mmm
Severities:
  lost     a cue, or the whole track, does not arrive: for its own fault (Q1..), or because it
           shares a chunk with something else (Q2..)
  changed  it arrives, but not as it was written (Q3.., and settings in Q4..)
  remark   it arrives, and is worth a look (Q4..)
Of one code the first three are shown, and those that a chunk takes with it as one; --all shows
each. The sums follow, and for several tracks their total. A track without a finding prints
nothing. In json every line is an object, no finding is left out, and "sums" ends each track.
github makes annotations of the findings in a workflow there, and sarif one document in the format
SARIF 2.1.0, which has every finding too.

Examples:
  quill check track.vtt
  quill check --chunk 1460 --fail-on changed track.vtt
  quill check --format json track.vtt
  some-stream | quill check -
  quill check --select Q1,Q2 track.vtt
  quill check --explain Q113

Exit codes:
  0  no finding of the level of --fail-on
  1  at least one
  2  wrong usage, a track that cannot be read, an output that cannot be written or was closed
  3  the module cannot be loaded, or it crashed, hung or ended the process)";

std::optional<Severity> ParseFailOn(const std::string& name) {
    static constexpr std::optional<Severity> kLevels[] = {Severity::kLost, Severity::kChanged,
                                                          Severity::kRemark, std::nullopt};
    return kLevels[console::ParseChoice("--fail-on", {"lost", "changed", "remark", "never"}, name)];
}

// Where nobody chose, colours are for people who have not said that they want none.
bool IsForColours() {
    const char* const no_colour = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && (no_colour == nullptr || *no_colour == '\0');
}

}  // namespace

CheckCommand::CheckCommand(CLI::App& app)
    : Command(app, "check", "Say what becomes of every block of a track") {
    console::CommandLine& line = command_line();
    console::AddTrackArguments(line, tracks_, "The tracks to check");
    line.AddOption(
        "--format", "FORMAT",
        [this](const std::string& name) {
            format_ = static_cast<Format>(
                console::ParseChoice("--format", {"text", "json", "github", "sarif"}, name));
        },
        "How findings are printed: text (default), json, github or\n"
        "sarif");
    line.AddOption(
        "--color", "WHEN",
        [this](const std::string& name) {
            const std::size_t when =
                console::ParseChoice("--color", {"auto", "always", "never"}, name);
            in_colour_ = when == 0 ? std::nullopt : std::optional(when == 1);
        },
        "Whether text has colours: auto (default: on a terminal,\n"
        "unless NO_COLOR is set), always or never");
    line.AddNumber(
        "--chunk", "BYTES", {"a whole number of bytes", 1, kLargestTrack},
        [this](std::uint32_t bytes) { chunk_size_ = bytes; },
        "Play the track in chunks of this size (default: 65536, as\n"
        "quill cues does); the first one always holds the first line");
    line.AddNumber(
        "--pts", "TICKS", console::kTicks, [this](std::uint32_t ticks) { video_pts_ = ticks; },
        "The video's presentation time, as in quill cues: says\nwhich cues end before it");
    line.AddOption(
        "--fail-on", "LEVEL", [this](const std::string& name) { fail_on_ = ParseFailOn(name); },
        "What ends in exit code 1: lost (default), changed (or\n"
        "lost), remark (any finding), or never");
    AddCodeOptions();
    line.AddFlag("--codes", only_codes_, "List all codes with cause and fix, and do nothing else");
    line.AddNumber(
        "--jobs", "COUNT", {"a whole number of processes", 1, kMostJobs},
        [this](std::uint32_t count) { jobs_ = count; },
        "Check so many tracks at a time (default: one a core)");
    line.AddFlag("--all", all_, "Print every finding, however many there are of one code");
    line.AddFlag("--sums", in_full_,
                 "Print the sums of every track, also of one without a\n"
                 "finding, and what each of its bytes is part of");
    line.AddFlag("--blocks", blocks_,
                 "With --format json: an object for every block too, with\n"
                 "what became of it and which cue it makes");
    line.AddFlag("--quiet", quiet_, "Print no sums, and show no progress");
    host::AddLimitOption(line, limit_);
    console::AddModuleOption(line, module_);
    line.SetFooter(kFooter);
}

void CheckCommand::AddCodeOptions() {
    const auto taker = [](const char* option, std::optional<CodePrefixes>& prefixes) {
        return [option, &prefixes](const std::string& text) {
            prefixes = prefixes.value_or(CodePrefixes());
            AddPrefixes(option, text, *prefixes);
        };
    };
    command_line().AddRepeatedOption("--select", "CODES", taker("--select", selected_),
                                     "Report these codes only, such as Q1 (all that begin so)\n"
                                     "or Q1,Q408; a longer beginning outdoes a shorter one");
    command_line().AddRepeatedOption(
        "--ignore", "CODES", taker("--ignore", ignored_),
        "Do not report these. Without --select or --ignore, what\n"
        "a file .quillcheck says counts: the nearest one above a track");
    command_line().AddOption("--explain", "CODE", explained_,
                             "Print what the manual says of the code, with examples, and\n"
                             "do nothing else");
}

console::ExitCode CheckCommand::Run(console::Output& output) {
    const std::unique_ptr<Report> report = MakeReport();
    if (only_codes_) {
        if (format_ != Format::kText && format_ != Format::kJson) {
            throw console::Failure(console::kExitUsage, "--codes has the formats text and json");
        }
        std::for_each(Codes(), Codes() + CodeCount(),
                      [&](const Code& code) { output.Write(report->Format(code)); });
        return console::kExitDone;
    }
    if (!explained_.empty()) {
        return ExplainCode(output);
    }
    if (!tracks_.AreGiven()) {
        throw console::Failure(console::kExitUsage,
                               "check: TRACK or --files-from is required (--help says more)");
    }
    if (blocks_ && format_ != Format::kJson) {
        throw console::Failure(console::kExitUsage, "--blocks has the format json");
    }
    try {
        return CheckTracks(Options(*report), output);
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

std::unique_ptr<Report> CheckCommand::MakeReport() const {
    switch (format_) {
        case Format::kJson:
            return MakeJsonReport();
        case Format::kGithub:
            return MakeGithubReport();
        case Format::kSarif:
            return MakeSarifReport();
        case Format::kText:
            break;
    }
    return MakeTextReport(in_colour_.value_or(IsForColours()));
}

console::ExitCode CheckCommand::ExplainCode(console::Output& output) const {
    const Code* const code = FindCode(explained_);
    if (code == nullptr) {
        throw console::Failure(console::kExitUsage, "there is no code \"" + explained_ + '"' +
                                                        SuggestCode(explained_) +
                                                        " (--codes lists all)");
    }
    output.Write(Explain(*code));
    return console::kExitDone;
}

CheckOptions CheckCommand::Options(const Report& report) const {
    const SumsWanted sums = quiet_     ? SumsWanted::kNone
                            : in_full_ ? SumsWanted::kInFull
                                       : SumsWanted::kOfFindings;
    return {{&report, report.Folds() && !all_, sums, blocks_},
            chunk_size_,
            video_pts_,
            selected_,
            ignored_,
            !quiet_};
}

console::ExitCode CheckCommand::CheckTracks(const CheckOptions& options,
                                            console::Output& output) const {
    const std::string path = module_.empty() ? host::FindDefaultModule() : module_;
    const Report& report = *options.printing.report;
    TrackRun run(options, output);
    run.Run(path, limit_, tracks_,
            jobs_.value_or(std::max(std::thread::hardware_concurrency(), 1u)));
    if (!quiet_ && run.total().tracks + run.total().failed > 1) {
        output.Write(report.Format(run.total(), in_full_));
    }
    output.Write(report.Ending(run.code() == console::kExitDone));
    return run.code() == console::kExitDone && Fails(run.total().sums) ? console::kExitTrack
                                                                       : run.code();
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
