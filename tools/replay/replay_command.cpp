#include "tools/replay/replay_command.h"

#include "tools/host/file_writer.h"
#include "tools/host/load_check.h"
#include "tools/host/module_handle.h"
#include "tools/replay/exports.h"
#include "tools/replay/log_reader.h"
#include "tools/replay/replay_run.h"
#include "tools/replay/session_check.h"
#include "tools/replay/session_printer.h"

namespace quill::replay {
namespace {

constexpr std::uint32_t kDefaultSeconds = 60;

constexpr char kFooter[] =
    R"(A LOG is what quillcaption-guard.so writes when QUILLCAPTION_GUARD_LOG names a file, and what
quill cues --record writes; - is standard input. It is played in a process of its own and on one
thread: a call of another thread is made in the callback in which it was made, or else behind the
call that it overlapped with. Calls that the guard did not pass on are not made. The first call that
comes out otherwise is shown, with what was expected and what came, and ends the play.

Examples:
  quill replay session.log
  quill replay --module some/folder/quillcaption.so session.log
  quill replay --show session.log
  quill replay --track fed.vtt --parser 1 session.log
  quill replay --case session.log > session.cases

Exit codes:
  0  all came out as recorded; with --check: nothing is lost
  1  something did not; with --check: something is lost
  2  wrong usage, a log that cannot be read or is damaged, an output that cannot be written
  3  the module cannot be loaded)";

}  // namespace

ReplayCommand::ReplayCommand(CLI::App& app)
    : Command(app, "replay", "Play a recorded session into a module again"),
      timeout_(kDefaultSeconds) {
    console::CommandLine& line = command_line();
    line.AddRequired("LOG", log_, "The recorded session; - reads standard input");
    line.AddFlag("--show", shows_, "Print the calls, a line each, and play none");
    line.AddOption("--track", "FILE", track_,
                   "Write what a parser was fed to this file, and play nothing");
    line.AddFlag("--case", writes_case_,
                 "Print a case for quill conform --cases that makes the same\n"
                 "calls, and play nothing");
    line.AddFlag("--check", checks_,
                 "Say what quill check says of what was fed, in the chunks in\n"
                 "which it was fed");
    line.AddNumber(
        "--parser", "NUMBER", {"the number of a parser", 1, UINT32_MAX},
        [this](std::uint32_t number) { parser_ = number; },
        "Which parser --track and --check are about, counted in the\norder of creation");
    line.AddFlag("--pace", keeps_pace_, "Make each call at its recorded time");
    line.AddNumber(
        "--timeout", "SECONDS", console::kSeconds,
        [this](std::uint32_t seconds) { timeout_ = std::chrono::seconds(seconds); },
        "How long the play may take, pauses of --pace not counted,\n"
        "before it counts as hung (default: 60)");
    console::AddTextOrJson(line, as_json_,
                           "How the verdict, the calls or the findings are printed");
    console::AddModuleOption(line, module_);
    line.SetFooter(kFooter);
}

console::ExitCode ReplayCommand::Run(console::Output& output) {
    CheckUsage();
    const Session session = ReadLog(log_);
    if (shows_) {
        output.Write(as_json_ ? ShowAsJson(session) : ShowAsText(session));
    } else if (writes_case_) {
        output.Write(WriteCase(session));
    } else if (!track_.empty()) {
        WriteTrack(session);
    } else if (checks_) {
        return Check(session, output);
    } else {
        return Play(session, output);
    }
    return console::kExitDone;
}

void ReplayCommand::CheckUsage() const {
    const int chosen = int{shows_} + int{writes_case_} + int{checks_} + (track_.empty() ? 0 : 1);
    const char* const mistake =
        chosen > 1 ? "only one of --show, --track, --case and --check can be done at a time"
        : parser_ != 0 && !checks_ && track_.empty() ? "--parser is for --track and --check"
        : keeps_pace_ && chosen != 0
            ? "--pace is for a play, not for --show, --track, --case or --check"
            : nullptr;
    if (mistake != nullptr) {
        throw console::Failure(console::kExitUsage,
                               std::string("replay: ") + mistake + " (--help says more)");
    }
}

std::string ReplayCommand::ModulePath() const {
    std::string path = module_.empty() ? host::FindDefaultModule() : module_;
    host::CheckThatItLoads(path, timeout_);
    return path;
}

console::ExitCode ReplayCommand::Play(const Session& session, console::Output& output) const {
    const Verdict verdict = Replay(session, {ModulePath(), timeout_, keeps_pace_});
    output.Write(as_json_ ? FormatAsJson(session, verdict) : FormatAsText(session, verdict));
    return verdict.is_same() ? console::kExitDone : console::kExitTrack;
}

console::ExitCode ReplayCommand::Check(const Session& session, console::Output& output) const {
    const std::vector<FedTrack> tracks = FedTracks(session, parser_);
    return CheckTracks({session.name, ModulePath(), timeout_, as_json_}, tracks, output);
}

void ReplayCommand::WriteTrack(const Session& session) const {
    const std::vector<FedTrack> tracks = FedTracks(session, parser_);
    if (tracks.size() > 1) {
        throw console::Failure(console::kExitUsage,
                               session.name + ": " + std::to_string(tracks.size()) +
                                   " parsers were fed; choose one with --parser, such as " +
                                   std::to_string(tracks.front().parser));
    }
    host::WriteWhole(track_, tracks.front().bytes);
}

}  // namespace quill::replay
