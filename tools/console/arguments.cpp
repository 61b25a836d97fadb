#include "tools/console/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

namespace quill::console {

CommandLine::CommandLine(CLI::App& app, const std::string& name, const std::string& what)
    : app_(app.add_subcommand(name, what)) {}

void CommandLine::AddRequired(const std::string& name, std::string& value,
                              const std::string& what) {
    app_->add_option(name, value, what)->required()->type_name("");
}

void CommandLine::AddOptional(const std::string& name, std::string& value,
                              const std::string& what) {
    app_->add_option(name, value, what)->type_name("");
}

void CommandLine::AddOptional(const std::string& name, std::vector<std::string>& values,
                              const std::string& what) {
    app_->add_option(name, values, what)->type_name("");
}

void CommandLine::AddFlag(const std::string& name, bool& value, const std::string& what) {
    app_->add_flag(name, value, what);
}

void CommandLine::AddOption(const std::string& name, const std::string& type, std::string& value,
                            const std::string& what) {
    app_->add_option(name, value, what)->type_name(type);
}

void CommandLine::AddOption(const std::string& name, const std::string& type, const Take& take,
                            const std::string& what) {
    app_->add_option_function<std::string>(name, take, what)->type_name(type);
}

void CommandLine::AddNumber(const std::string& name, const std::string& type,
                            const WholeNumber& wanted, const TakeNumber& take,
                            const std::string& what) {
    AddOption(
        name, type,
        [name, wanted, take](const std::string& text) {
            std::uint32_t number = 0;
            const char* const end = text.data() + text.size();
            const auto [parsed, error] = std::from_chars(text.data(), end, number);
            if (parsed != end || error != std::errc() || number < wanted.least ||
                number > wanted.most) {
                RejectArgument(name + " takes " + wanted.what + " from " +
                               std::to_string(wanted.least) + " to " + std::to_string(wanted.most) +
                               ", not \"" + text + "\"");
            }
            take(number);
        },
        what);
}

void CommandLine::AddRepeatedOption(const std::string& name, const std::string& type,
                                    const Take& take, const std::string& what) {
    app_->add_option_function<std::string>(name, take, what)->type_name(type)->trigger_on_parse();
}

void CommandLine::SetFooter(const std::string& text) {
    app_->footer(text);
}

bool CommandLine::IsChosen() const {
    return app_->parsed();
}

void RejectArgument(const std::string& message) {
    throw CLI::ValidationError(message, CLI::ExitCodes::ValidationError);
}

void AddModuleOption(CommandLine& line, std::string& path) {
    line.AddOption("--module", "FILE", path,
                   "The module to load\n(default: the quillcaption.so that belongs to this quill)");
}

void AddModuleArguments(CommandLine& line, ModuleArguments& arguments) {
    AddModuleOption(line, arguments.path);
    line.AddFlag("--quiet", arguments.quiet,
                 "Keep the module's diagnostics and notes off standard error;\n"
                 "errors, and warnings about lost cues, are still said");
}

std::size_t ParseChoice(const std::string& option, const std::vector<std::string>& choices,
                        const std::string& text) {
    const auto chosen = std::find(choices.begin(), choices.end(), text);
    if (chosen == choices.end()) {
        std::string list = choices.front();
        for (std::size_t index = 1; index < choices.size(); ++index) {
            list += (index + 1 < choices.size() ? ", " : " or ") + choices[index];
        }
        RejectArgument(option + " takes " + list + ", not \"" + text + "\"");
    }
    return static_cast<std::size_t>(chosen - choices.begin());
}

void AddTextOrJson(CommandLine& line, bool& as_json, const std::string& what) {
    line.AddOption(
        "--format", "FORMAT",
        [&as_json](const std::string& name) {
            as_json = ParseChoice("--format", {"text", "json"}, name) == 1;
        },
        what + ": text (default) or json");
}

}  // namespace quill::console
