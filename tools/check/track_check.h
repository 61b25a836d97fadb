// Checks one track: its signature, its header and its blocks.
#ifndef TOOLS_CHECK_TRACK_CHECK_H_
#define TOOLS_CHECK_TRACK_CHECK_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/check/track_report.h"
#include "tools/check/track_text.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::check {

// The module reads everything twice: in pieces, which tells what is wrong with each of them, and
// as a player feeds it. A block that makes a cue alone and none in the play is lost for something
// else in its chunk.
class TrackCheck {
  public:
    // `track` has a line end behind its first line, if need be an added one. All that is given
    // must outlive the check; the capture must collect.
    TrackCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               std::string_view track, ChunkPlan plan, std::uint32_t video_pts,
               TrackReport& report);

    // `size` is that of the track without an added line end. Throws OutputError.
    void Run(std::size_t size);

  private:
    bool IsRejected();
    bool IsFirstLineCut() const;

    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    std::string_view track_;
    ChunkPlan plan_;
    std::uint32_t video_pts_;
    TrackReport& report_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_CHECK_H_
