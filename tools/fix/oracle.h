// What the module makes of single times, settings and texts.
#ifndef TOOLS_FIX_ORACLE_H_
#define TOOLS_FIX_ORACLE_H_

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/codes.h"
#include "tools/check/lone_parser.h"

namespace quill::fix {

class Oracle {
  public:
    // All that is given must outlive the oracle; the capture must collect.
    Oracle(const host::ModuleHandle& module, host::DiagnosticsCapture& capture);

    // In seconds; nothing when the module takes it for no time.
    std::optional<double> Time(std::string_view time);
    // The record of a cue with these settings; nothing when the module throws.
    std::optional<check::CueCopy> Settings(const std::string& settings);
    // What a player shows of lines of text; nothing when it gets no cue.
    std::optional<std::string> Shown(const std::string& lines);
    // What quill check finds about a map in the header; nullptr when it does what it says.
    const check::Code* FaultOfMap(std::string_view line);
    // The cue that a block makes alone; an open one is ended by what a player feeds behind a track.
    // Valid until the next question.
    const check::Verdict& Block(std::string_view block, bool is_open = false);

  private:
    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    check::LoneParser parser_;
    std::map<std::string, std::optional<check::CueCopy>> settings_;
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_ORACLE_H_
