// Runs `quill check` on what the parsers of a session were fed.
#ifndef TOOLS_REPLAY_SESSION_CHECK_H_
#define TOOLS_REPLAY_SESSION_CHECK_H_

#include <chrono>
#include <string>
#include <vector>

#include "tools/console/failure.h"
#include "tools/console/output.h"
#include "tools/replay/exports.h"

namespace quill::replay {

struct CheckRequest {
    std::string log;  // its name
    std::string module;
    std::chrono::milliseconds timeout;  // for each track
    bool as_json = false;
};

// Checks each track in a process of its own, in the chunks in which it was fed, and prints what
// quill check prints. kExitTrack when something is lost.
console::ExitCode CheckTracks(const CheckRequest& request, const std::vector<FedTrack>& tracks,
                              console::Output& output);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_SESSION_CHECK_H_
