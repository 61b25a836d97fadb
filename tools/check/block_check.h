// Finds out what becomes of every block behind the header of a track.
#ifndef TOOLS_CHECK_BLOCK_CHECK_H_
#define TOOLS_CHECK_BLOCK_CHECK_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "tools/check/block_note.h"
#include "tools/check/block_text.h"
#include "tools/check/cue_matcher.h"
#include "tools/check/cue_remarks.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"
#include "tools/check/neighbours.h"
#include "tools/check/play.h"
#include "tools/check/sums.h"
#include "tools/check/track_report.h"
#include "tools/check/track_text.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::check {

// Has the module read each block alone, so that the verdict is on that block and on nothing else,
// and looks the cue up in the play.
class BlockCheck {
  public:
    // All that is given must outlive the check.
    BlockCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               std::string_view track, const ChunkPlan& plan, const Play& play,
               TrackReport& report);

    // Goes through the blocks from `begin` on, where the line with that number begins. What was
    // found above is said with them.
    void Run(std::size_t begin, std::uint32_t line, const Findings& above);

  private:
    // Whether there is a cue, or a block that may have been meant for one.
    bool HasBlocks(std::size_t begin, std::uint32_t line);
    // Of a comment, what was meant for a cue and runs on from it.
    bool HoldsCue();
    ByteClass Judge(const Block& block, const Verdict& verdict, Findings& findings);
    ByteClass JudgeDelivered(const Block& block, const Verdict& verdict, Findings& findings);
    ByteClass JudgeLost(const Block& block, const Verdict& verdict, Findings& findings);
    ByteClass JudgeComment(Findings& findings);
    void ExplainLost(const Block& block, const Verdict& verdict, Findings& findings);
    Finding ExplainLostOnce(const Block& block, const Verdict& verdict, const Surroundings& around);
    void ExplainRest(const Block& block, const Verdict& verdict, Findings& findings);
    void NoteForm(const Block& block, const Verdict& verdict);
    void Note(const Block& block, const Verdict& verdict, ByteClass fate);
    std::optional<BlockTimes> TimesOf(const Verdict& verdict) const;
    void ReportStrays(std::size_t chunk);

    std::string_view track_;
    const ChunkPlan& plan_;
    const Play& play_;
    TrackReport& report_;
    LoneParser parser_;
    LoneParser asked_;  // by the remarks, while a verdict of the other one is looked at
    CueRemarks remarks_;
    CueMatcher matcher_;
    Neighbours neighbours_;
    BlockText text_;
    BlockForm above_ = BlockForm::kNothing;  // of the block above
    bool awaits_text_ = false;  // the finding of the block above speaks of the text below it
    struct Explained {
        std::string_view text;
        Surroundings around;
        Finding finding;
    };
    std::optional<Explained> explained_;  // the last block of one line that is lost
    LineCounter line_counter_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_BLOCK_CHECK_H_
