#include "tools/conform/conform_command.h"

#include "tools/conform/case_runner.h"
#include "tools/conform/suite.h"
#include "tools/conform/timing.h"
#include "tools/conform/verdict_printer.h"
#include "tools/console/arguments.h"
#include "tools/console/failure.h"
#include "tools/console/progress.h"
#include "tools/host/load_check.h"
#include "tools/host/module_handle.h"

namespace quill::conform {
namespace {

constexpr std::uint32_t kDefaultSeconds = 10;

constexpr char kFooter[] = R"(Each case runs in a process of its own: a crash or a hang is a result.

Formats:
  text  a line for each case, below it what was expected and what came; the count at the end
  json  an object a line: case, reason, place, outcome (passed, failed, crashed or hung) and
        details; the last line holds the counts. With --time: what, us, chunk, us_a_cue and
        us_a_megabyte

Examples:
  quill conform
  quill conform --failed-only some/folder/quillcaption.so
  quill conform --only settings --only 'markup/*reference*'
  quill conform --list --only times
  quill conform --time

Exit codes:
  0  all cases passed
  1  a case did not pass, or a time could not be taken
  2  wrong usage, or an output that cannot be written
  3  the module cannot be loaded)";

}  // namespace

ConformCommand::ConformCommand(CLI::App& app)
    : Command(app, "conform", "Try whether a build of the module does all that hosts rely on"),
      timeout_(kDefaultSeconds) {
    console::CommandLine& line = command_line();
    line.AddOptional(
        "MODULE", module_,
        "The module to try\n(default: the quillcaption.so that belongs to this quill)");
    line.AddFlag("--list", list_, "Print the cases and their reasons, and run none");
    line.AddRepeatedOption(
        "--only", "PATTERN", [this](const std::string& pattern) { patterns_.push_back(pattern); },
        "Run these cases only: a group, or a pattern such as 'times/*hours*';\n"
        "may be given more than once");
    line.AddFlag("--failed-only", failed_only_, "Print only the cases that did not pass");
    line.AddOption("--cases", "FILE", case_file_,
                   "Run the cases of this file instead of quill's own");
    line.AddFlag("--time", time_,
                 "Run no cases, but time the module on this machine: loading, the first cue,\n"
                 "and dialogue, in microseconds a cue and a megabyte");
    line.AddNumber(
        "--timeout", "SECONDS", console::kSeconds,
        [this](std::uint32_t seconds) { timeout_ = std::chrono::seconds(seconds); },
        "How long a case, or a time, may take before it counts as hung (default: 10)");
    console::AddTextOrJson(line, as_json_, "How the results are printed");
    line.SetFooter(kFooter);
}

console::ExitCode ConformCommand::Run(console::Output& output) {
    if (time_) {
        return RunTimes(output);
    }
    const std::vector<Case> cases =
        SelectCases(case_file_.empty() ? BuiltInCases() : CasesOfFile(case_file_), patterns_);
    if (list_) {
        PrintCaseList(output, cases, as_json_);
        return console::kExitDone;
    }
    const std::string module = module_.empty() ? host::FindDefaultModule() : module_;
    host::CheckThatItLoads(module, timeout_);
    VerdictPrinter printer(output, as_json_, failed_only_);
    console::Progress progress(true, std::chrono::milliseconds(0));
    std::size_t done = 0;
    for (const Case& one : cases) {
        const Verdict verdict = RunCase(one, module, timeout_);
        progress.Wipe();
        printer.Print(one, verdict);
        ++done;
        if (progress.IsDue()) {
            progress.Show(std::to_string(done) + " of " + std::to_string(cases.size()) + " cases");
        }
    }
    progress.Wipe();
    printer.PrintCount();
    return printer.all_passed() ? console::kExitDone : console::kExitTrack;
}

console::ExitCode ConformCommand::RunTimes(console::Output& output) const {
    if (list_ || failed_only_ || !patterns_.empty() || !case_file_.empty()) {
        throw console::Failure(console::kExitUsage,
                               "--time runs no cases: leave out --list, --only, --failed-only and "
                               "--cases");
    }
    const std::string module = module_.empty() ? host::FindDefaultModule() : module_;
    host::CheckThatItLoads(module, timeout_);
    PrintTimes(output, module, timeout_, as_json_);
    return console::kExitDone;
}

}  // namespace quill::conform
