// quill: drives the caption module from the command line, through the interface that a player
// uses and nothing else.
#include <csignal>
#include <memory>
#include <vector>

#include "quillcaption/quillcaption.h"
#include "tools/check/check_command.h"
#include "tools/conform/conform_command.h"
#include "tools/console/command.h"
#include "tools/console/failure.h"
#include "tools/console/output.h"
#include "tools/console/program.h"
#include "tools/cues/cues_command.h"
#include "tools/fix/fix_command.h"
#include "tools/inspect/inspect_command.h"
#include "tools/replay/replay_command.h"
#include "tools/report/report_command.h"

namespace quill {
namespace {

console::ExitCode RunChosen(const std::vector<std::unique_ptr<console::Command>>& commands,
                            console::Output& output) {
    for (const auto& command : commands) {
        if (command->IsChosen()) {
            return command->Run(output);
        }
    }
    return console::kExitUsage;
}

console::ExitCode Run(int argc, char** argv) {
    console::Program program("quill", "Drives the WebVTT caption module from the command line",
                             QUILLCAPTION_VERSION);
    std::vector<std::unique_ptr<console::Command>> commands;
    commands.push_back(std::make_unique<cues::CuesCommand>(program.app()));
    commands.push_back(std::make_unique<check::CheckCommand>(program.app()));
    commands.push_back(std::make_unique<fix::FixCommand>(program.app()));
    commands.push_back(std::make_unique<report::ReportCommand>(program.app()));
    commands.push_back(std::make_unique<inspect::InspectCommand>(program.app()));
    commands.push_back(std::make_unique<conform::ConformCommand>(program.app()));
    commands.push_back(std::make_unique<replay::ReplayCommand>(program.app()));

    console::Output output;
    if (!program.Parse(argc, argv, output)) {
        return console::kExitDone;
    }
    return RunChosen(commands, output);
}

}  // namespace
}  // namespace quill

int main(int argc, char** argv) {
    // A closed pipe, or a limit on the size of files, is an error of the write that meets it.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    // Or the system would not keep how a child has ended.
    std::signal(SIGCHLD, SIG_DFL);
    return quill::console::RunToEnd([argc, argv] { return quill::Run(argc, argv); });
}
