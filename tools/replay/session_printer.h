// Shows sessions, and what became of playing them.
#ifndef TOOLS_REPLAY_SESSION_PRINTER_H_
#define TOOLS_REPLAY_SESSION_PRINTER_H_

#include <string>

#include "tools/console/json.h"
#include "tools/replay/replay_run.h"
#include "tools/replay/session.h"

namespace quill::replay {

// A line for each call, and below it one for each mistake; indented by the calls in whose callback
// it was made.
std::string ShowAsText(const Session& session);

// An object a line, in ASCII: for each call one with "call", for each mistake that belongs to none
// one with "mistake", at the end one with the sums.
std::string ShowAsJson(const Session& session);
// The object of one call.
console::Json InJson(const Session& session, const Call& call);

// How far it came out as recorded, and the first difference.
std::string FormatAsText(const Session& session, const Verdict& verdict);
std::string FormatAsJson(const Session& session, const Verdict& verdict);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_SESSION_PRINTER_H_
