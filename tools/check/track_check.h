// Finds out what becomes of every block of one track.
#ifndef TOOLS_CHECK_TRACK_CHECK_H_
#define TOOLS_CHECK_TRACK_CHECK_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/block_text.h"
#include "tools/check/cue_matcher.h"
#include "tools/check/cue_remarks.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"
#include "tools/check/play.h"
#include "tools/check/progress.h"
#include "tools/check/report.h"
#include "tools/check/sums.h"
#include "tools/check/track_text.h"
#include "tools/diagnostics_capture.h"
#include "tools/module_handle.h"

namespace quill {

// Has the module read each block alone, so that the verdict is on that block and nothing else;
// and the track as a player feeds it. A block that makes a cue alone and does not in the play is
// lost for something else in its chunk.
class TrackCheck {
  public:
    // `track` must hold at least one byte, and a line end if it can. All that is given must
    // outlive the check; the capture must collect.
    TrackCheck(const ModuleHandle& module, DiagnosticsCapture& capture, std::string name,
               std::string_view track, std::optional<std::uint32_t> chunk_size, Report& report,
               Progress& progress);

    // `size` is that of the track without a line end that was added. Throws OutputError.
    Sums Run(std::size_t size);

  private:
    // The last block that gave a chunk up.
    struct Culprit {
        std::size_t chunk;
        std::uint32_t line;
    };
    // How far the line of some byte has been looked for.
    struct Place {
        std::size_t offset;
        std::uint32_t line;
    };

    bool IsRejected();
    void CheckBlocks(const Play& play, std::size_t begin, std::uint32_t line);
    ByteClass Judge(const Block& block, const Verdict& verdict, Findings& findings);
    ByteClass JudgeDelivered(const Block& block, const Verdict& verdict, Findings& findings);
    ByteClass JudgeLost(const Block& block, const Verdict& verdict, Findings& findings);
    Finding ExplainNeighbours(const Block& block, const Verdict& verdict);
    bool HasSkippedLineFeed(std::size_t begin, std::size_t end) const;
    void NoteCulprit(const Block& block, const Verdict& verdict, const Findings& findings);
    void ReportStrays(std::size_t chunk);
    void Say(Findings& findings);

    const ModuleHandle& module_;
    DiagnosticsCapture& capture_;
    std::string name_;
    std::string_view track_;
    ChunkPlan plan_;
    Report& report_;
    Progress& progress_;
    Sums sums_;

    // During CheckBlocks only.
    const Play* play_ = nullptr;
    CueMatcher* matcher_ = nullptr;
    CueRemarks* remarks_ = nullptr;
    BlockText text_;
    std::optional<Culprit> culprit_;
    std::size_t block_before_ = 0;     // where it begins
    std::size_t carriage_return_ = 0;  // the first one
    Place place_{0, 1};
};

}  // namespace quill

#endif  // TOOLS_CHECK_TRACK_CHECK_H_
