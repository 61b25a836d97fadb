// Plays a session into a module and compares what comes with what was recorded.
#ifndef TOOLS_REPLAY_REPLAY_RUN_H_
#define TOOLS_REPLAY_REPLAY_RUN_H_

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "tools/replay/session.h"

namespace quill::replay {

struct Verdict {
    const Call* call = nullptr;         // the first that differs, or in which the play ended
    std::vector<std::string> expected;  // from the first line on that differs
    std::vector<std::string> got;
    std::string end;         // "crashed by SIGSEGV"; empty when the play came to its end
    std::size_t agreed = 0;  // calls that came out as recorded

    bool is_same() const { return end.empty() && expected.empty() && got.empty(); }
};

struct ReplayOptions {
    std::string module;
    std::chrono::milliseconds timeout;
    bool keeps_pace = false;  // each call is made at its recorded time at the earliest
};

// In a process of its own, so that a crash or a hang of the module is a verdict.
Verdict Replay(const Session& session, const ReplayOptions& options);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_REPLAY_RUN_H_
