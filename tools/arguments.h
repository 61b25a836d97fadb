// Reading what the user gave on the command line, with messages that say what would be right.
#ifndef TOOLS_ARGUMENTS_H_
#define TOOLS_ARGUMENTS_H_

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

namespace quill {

// A whole number in decimal digits, from `least` to `most`. Throws CLI::ValidationError saying
// that `option` takes `what` ("a whole number of bytes") in that range.
std::uint32_t ParseWholeNumber(const std::string& option, const std::string& what,
                               const std::string& text, std::uint32_t least, std::uint32_t most);

// Adds --module. `path` must live as long as the command line is parsed.
void AddModuleOption(CLI::App& app, std::string& path);

// What every subcommand that drives the module can be told.
struct ModuleArguments {
    std::string path;  // empty: the module that belongs to this quill
    bool quiet = false;
};

// Adds --module and --quiet. The arguments must live as long as the command line is parsed.
void AddModuleArguments(CLI::App& app, ModuleArguments& arguments);

// Adds --format with the choices text, the default, and json. `what` begins its help.
void AddTextOrJson(CLI::App& app, bool& as_json, const std::string& what);

}  // namespace quill

#endif  // TOOLS_ARGUMENTS_H_
