// Reading what the user gave on the command line, with messages that say what would be right.
#ifndef TOOLS_CONSOLE_ARGUMENTS_H_
#define TOOLS_CONSOLE_ARGUMENTS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quill::console {

// What an option takes a number of, and from where to where.
struct WholeNumber {
    const char* what;  // "a whole number of bytes"
    std::uint32_t least;
    std::uint32_t most;
};
constexpr WholeNumber kSeconds = {"a whole number of seconds", 1, 3600};
constexpr WholeNumber kTicks = {"a whole number of 90 kHz ticks", 0, UINT32_MAX};

// The command line of one subcommand. It stands between the subcommands and CLI11, which takes ten
// seconds to compile wherever it is included. What is added is told to --help in the same order;
// the variables must live as long as the command line is parsed.
class CommandLine {
  public:
    using Take = std::function<void(const std::string& text)>;
    using TakeNumber = std::function<void(std::uint32_t number)>;

    // Does not own the app, which must outlive it.
    CommandLine(CLI::App& app, const std::string& name, const std::string& what);

    void AddRequired(const std::string& name, std::string& value, const std::string& what);
    void AddOptional(const std::string& name, std::string& value, const std::string& what);
    void AddOptional(const std::string& name, std::vector<std::string>& values,
                     const std::string& what);
    void AddFlag(const std::string& name, bool& value, const std::string& what);
    void AddOption(const std::string& name, const std::string& type, std::string& value,
                   const std::string& what);
    // `take` gets the option's text; RejectArgument is how it refuses one.
    void AddOption(const std::string& name, const std::string& type, const Take& take,
                   const std::string& what);
    // The same for decimal digits; refuses other texts and numbers, saying what it takes.
    void AddNumber(const std::string& name, const std::string& type, const WholeNumber& wanted,
                   const TakeNumber& take, const std::string& what);
    // As AddOption, for an option that may be given more than once.
    void AddRepeatedOption(const std::string& name, const std::string& type, const Take& take,
                           const std::string& what);
    // What --help says behind the options.
    void SetFooter(const std::string& text);

    // After parsing: whether the user called this subcommand.
    bool IsChosen() const;

  private:
    CLI::App* app_;
};

// Ends parsing with a message that says what would be right.
[[noreturn]] void RejectArgument(const std::string& message);

// The place of the text among the choices, of which there are two or more. Rejects others, saying
// what `option` takes.
std::size_t ParseChoice(const std::string& option, const std::vector<std::string>& choices,
                        const std::string& text);

// Adds --module.
void AddModuleOption(CommandLine& line, std::string& path);

// What every subcommand that drives the module can be told.
struct ModuleArguments {
    std::string path;  // empty: the module that belongs to this quill
    bool quiet = false;
};

// Adds --module and --quiet.
void AddModuleArguments(CommandLine& line, ModuleArguments& arguments);

// Adds --format with the choices text, the default, and json. `what` begins its help.
void AddTextOrJson(CommandLine& line, bool& as_json, const std::string& what);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_ARGUMENTS_H_
