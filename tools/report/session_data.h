// What the page knows of a recorded session: what quill replay shows of it.
#ifndef TOOLS_REPORT_SESSION_DATA_H_
#define TOOLS_REPORT_SESSION_DATA_H_

#include "tools/replay/session.h"
#include "tools/report/columns.h"

namespace quill::report {

// An object with
//   "name", "recorder", "module", "started", as the log says them, "" where it does not,
//   "hidden", "cut_off", "stopped", true or false,
//   "calls", packed lines of `quill replay --show --format json` without what the page has
//     elsewhere: the bytes of chunks, which are the tracks', and the cues of deliveries. "call" and
//     "us" count from those of the call before; "outcome" is one text; "took" and "delivered_after"
//     are microseconds from the call to its return and its delivery; "cues" is how many came, and
//     "fed" how many bytes were read where not "size", and
//   "mistakes", packed, each with "call", "code" and "text".
// Of long sessions the last calls are left out, and "left_out" in the packed lines counts them.
Json MakeSessionData(const replay::Session& session);

}  // namespace quill::report

#endif  // TOOLS_REPORT_SESSION_DATA_H_
