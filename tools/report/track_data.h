// What the page knows of a track: what quill check and quill cues print about it in JSON.
#ifndef TOOLS_REPORT_TRACK_DATA_H_
#define TOOLS_REPORT_TRACK_DATA_H_

#include <cstdint>
#include <string>

#include "tools/check/track_checker.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"
#include "tools/report/columns.h"

namespace quill::report {

// A page of a larger one would be slow to open.
constexpr std::uint32_t kLargestTrack = 16u << 20;

struct PlayOptions {
    std::uint32_t chunk_size;
    std::uint32_t video_pts;
};

// A track as it was read.
struct TrackBytes {
    std::string name;  // as messages have it
    std::string bytes;
};

// Throws Failure when the track cannot be read or is too large.
TrackBytes ReadTrack(const std::string& path);

// An object with
//   "name", "module", "source" (the bytes in base64),
//   "sums" as `quill check --format json` prints them,
//   "findings" and "blocks", packed lines of `quill check --format json --blocks`,
//   "cues", packed lines of `quill cues --format json`, and
//   "codes", those lines of `quill check --codes --format json` that the findings need.
// The whole has no more than about three bytes for each of the track's: where that is not enough,
// the last findings, blocks and cues are left out, and "left_out" in the packed lines counts them.
// The capture must collect.
Json MakeTrackData(const TrackBytes& track, const std::string& module_path,
                   const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                   const PlayOptions& options);

}  // namespace quill::report

#endif  // TOOLS_REPORT_TRACK_DATA_H_
