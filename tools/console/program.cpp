#include "tools/console/program.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <vector>

#include "tools/console/message.h"
#include "tools/console/suggestion.h"

namespace quill::console {
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
        return mistake + Suggest(word.substr(0, word.find('=')),
                                 OptionNames(chosen.empty() ? app : *chosen.front()));
    }
    return chosen.empty() ? mistake + Suggest(word, SubcommandNames(app)) : mistake;
}

}  // namespace

Program::Program(const std::string& name, const std::string& what, const std::string& version)
    : app_(std::make_unique<CLI::App>(what, name)) {
    app_->set_version_flag("--version", name + " " + version);
    app_->require_subcommand(1);
}

Program::~Program() = default;

bool Program::Parse(int argc, char** argv, Output& output) {
    try {
        app_->parse(argc, argv);
        return true;
    } catch (const CLI::CallForHelp&) {
        output.Write(app_->help());
    } catch (const CLI::CallForVersion& version) {
        output.Write(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        throw Failure(kExitUsage, DescribeMistake(*app_, error) + " (--help says more)");
    }
    return false;
}

ExitCode RunToEnd(const std::function<ExitCode()>& work) {
    try {
        return work();
    } catch (const Failure& failure) {
        Say(failure.what());
        return failure.code();
    } catch (const std::bad_alloc&) {
        Say("out of memory");
        return kExitUsage;
    } catch (const std::exception& error) {
        Say(error.what());
        return kExitTrack;
    }
}

}  // namespace quill::console
