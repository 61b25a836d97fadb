// The cues that a recorded host was given, and which of its track's those are.
#ifndef TOOLS_REPORT_DELIVERED_CUES_H_
#define TOOLS_REPORT_DELIVERED_CUES_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/replay/session.h"
#include "tools/report/columns.h"

namespace quill::report {

// The cues of one parser, in the order in which they came: objects as `quill cues --format json`
// prints them, with the number of the call that delivered each as "call".
std::vector<Json> DeliveredCues(const replay::Session& session, std::uint32_t parser);

// For each of the cues of a play, which is the track's whole, the place of the same cue among those
// that were delivered, counted from 1; 0 for one that was not. A cue may have come with other
// times: the video time decides those.
std::vector<std::size_t> FindDelivered(const std::vector<Json>& played,
                                       const std::vector<Json>& delivered);

}  // namespace quill::report

#endif  // TOOLS_REPORT_DELIVERED_CUES_H_
