#include "tools/arguments.h"

#include <CLI/CLI.hpp>
#include <charconv>

namespace quill {

std::uint32_t ParseWholeNumber(const std::string& option, const std::string& what,
                               const std::string& text, std::uint32_t least, std::uint32_t most) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, number);
    if (parsed != end || error != std::errc() || number < least || number > most) {
        throw CLI::ValidationError(option + " takes " + what + " from " + std::to_string(least) +
                                       " to " + std::to_string(most) + ", not \"" + text + "\"",
                                   CLI::ExitCodes::ValidationError);
    }
    return number;
}

void AddModuleOption(CLI::App& app, std::string& path) {
    app.add_option("--module", path,
                   "The module to load\n(default: the quillcaption.so that belongs to this quill)")
        ->type_name("FILE");
}

void AddModuleArguments(CLI::App& app, ModuleArguments& arguments) {
    AddModuleOption(app, arguments.path);
    app.add_flag("--quiet", arguments.quiet,
                 "Keep the module's diagnostics and notes off standard error;\n"
                 "errors, and warnings about lost cues, are still said");
}

void AddTextOrJson(CLI::App& app, bool& as_json, const std::string& what) {
    const auto choose = [&as_json](const std::string& name) {
        if (name != "text" && name != "json") {
            throw CLI::ValidationError("--format takes text or json, not \"" + name + "\"",
                                       CLI::ExitCodes::ValidationError);
        }
        as_json = name == "json";
    };
    app.add_option_function<std::string>("--format", choose, what + ": text (default) or json")
        ->type_name("FORMAT");
}

}  // namespace quill
