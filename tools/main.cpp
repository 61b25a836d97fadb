// quill: drives the caption module from the command line, through the interface that a player
// uses and nothing else.
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "quillcaption/quillcaption.h"
#include "tools/check/check_command.h"
#include "tools/conform/conform_command.h"
#include "tools/console/command.h"
#include "tools/console/failure.h"
#include "tools/console/message.h"
#include "tools/console/output.h"
#include "tools/console/suggestion.h"
#include "tools/cues/cues_command.h"
#include "tools/fix/fix_command.h"
#include "tools/inspect/inspect_command.h"

namespace quill {
namespace {

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::vector<std::string> SubcommandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const subcommand : app.get_subcommands(nullptr)) {
        names.push_back(subcommand->get_name());
    }
    return names;
}

// A word that stands in the subcommand's place is the mistake, rather than that one is missing.
std::string DescribeMistake(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    const std::vector<std::string> unknown = app.remaining(true);
    if (unknown.empty()) {
        return error.what();
    }
    const std::string& word = unknown.front();
    const bool is_option = word.substr(0, 1) == "-";
    const std::string mistake =
        chosen.empty() ? "there is no subcommand or option \"" + word + '"' : error.what();
    if (is_option) {
        return mistake + console::Suggest(word.substr(0, word.find('=')),
                                          OptionNames(chosen.empty() ? app : *chosen.front()));
    }
    return chosen.empty() ? mistake + console::Suggest(word, SubcommandNames(app)) : mistake;
}

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
    CLI::App app("Drives the WebVTT caption module from the command line", "quill");
    app.set_version_flag("--version", "quill " QUILLCAPTION_VERSION);
    app.require_subcommand(1);
    std::vector<std::unique_ptr<console::Command>> commands;
    commands.push_back(std::make_unique<cues::CuesCommand>(app));
    commands.push_back(std::make_unique<check::CheckCommand>(app));
    commands.push_back(std::make_unique<fix::FixCommand>(app));
    commands.push_back(std::make_unique<inspect::InspectCommand>(app));
    commands.push_back(std::make_unique<conform::ConformCommand>(app));

    console::Output output;
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        output.Write(app.help());
        return console::kExitDone;
    } catch (const CLI::CallForVersion& version) {
        output.Write(std::string(version.what()) + "\n");
        return console::kExitDone;
    } catch (const CLI::ParseError& error) {
        throw console::Failure(console::kExitUsage,
                               DescribeMistake(app, error) + " (--help says more)");
    }
    return RunChosen(commands, output);
}

}  // namespace
}  // namespace quill

int main(int argc, char** argv) {
    // A closed pipe is an error of the write that meets it.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return quill::Run(argc, argv);
    } catch (const quill::console::Failure& failure) {
        quill::console::Say(failure.what());
        return failure.code();
    } catch (const std::bad_alloc&) {
        quill::console::Say("out of memory");
        return quill::console::kExitUsage;
    } catch (const std::exception& error) {
        quill::console::Say(error.what());
        return quill::console::kExitTrack;
    }
}
