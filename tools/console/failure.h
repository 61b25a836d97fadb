// How a run of quill can end, and the exception that ends one early.
#ifndef TOOLS_CONSOLE_FAILURE_H_
#define TOOLS_CONSOLE_FAILURE_H_

#include <stdexcept>
#include <string>

namespace quill::console {

// The exit codes of every subcommand; the help lists them.
enum ExitCode {
    kExitDone = 0,    // the work was done to its end
    kExitTrack = 1,   // the track was rejected, the module threw or breaks its contract
    kExitUsage = 2,   // wrong usage, or something that cannot be read or written
    kExitModule = 3,  // the module cannot be loaded, or crashed, hung or ended the process
};

// Ends the run: main() says the text on standard error and exits with the code.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_FAILURE_H_
