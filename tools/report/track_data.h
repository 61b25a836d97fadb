// What the page knows of a track: what quill check and quill cues print about it in JSON.
#ifndef TOOLS_REPORT_TRACK_DATA_H_
#define TOOLS_REPORT_TRACK_DATA_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/check/track_checker.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"
#include "tools/replay/exports.h"
#include "tools/replay/session.h"
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
    std::vector<std::size_t> sizes = {};  // of the chunks in which it was fed; none: as options say
};

// Throws Failure when the track cannot be read or is too large.
TrackBytes ReadTrack(const std::string& path);

// An object with
//   "name", "module" (its file, as it was given, for it has no version to tell) and "module_size",
//   "source" (the bytes in base64),
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

// The same for what a parser of a session was fed, in the chunks in which it was fed. "cues" are
// those that its host was given, with the number of the call that delivered each as "call"; a block
// whose cue was not is "not_taken", with the times that it would have had. Besides, "parser" is its
// number, and "strays" counts the cues of the host that no block of the track makes.
Json MakeFedTrackData(const replay::Session& session, const replay::FedTrack& fed,
                      const std::string& module_path, const host::ModuleHandle& module,
                      host::DiagnosticsCapture& capture);

// The same for a session in which no parser was fed anything: a track of no bytes.
Json MakeUnfedTrackData(const replay::Session& session, const std::string& module_path);

}  // namespace quill::report

#endif  // TOOLS_REPORT_TRACK_DATA_H_
