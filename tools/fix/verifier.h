// Holds the fixes to what they state, by what the module makes of the track before and after.
#ifndef TOOLS_FIX_VERIFIER_H_
#define TOOLS_FIX_VERIFIER_H_

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/check/play.h"
#include "tools/fix/document.h"
#include "tools/fix/oracle.h"

namespace quill::fix {

class Verifier {
  public:
    // `track` is as it was read. All that is given must outlive the verifier; the capture must
    // collect.
    Verifier(const host::ModuleHandle& module, host::DiagnosticsCapture& capture, Oracle& oracle,
             std::string_view track);

    // Has the module read every block of the outcome. Returns the lines of blocks that fixes have
    // touched and that give no cue all the same.
    std::set<std::uint32_t> Survey(const Document& outcome);

    // The rest is for the outcome that was surveyed last. Returns what is wrong, in words, and
    // nothing when every cue that no fix touches is delivered as before, every other one with the
    // differences that the fixes state and no other, and nothing is delivered less.
    std::optional<std::string> Verify(const Document& outcome, const std::optional<double>& offset);

  private:
    // A block of the track as it was read, in line numbers.
    struct Before {
        check::Block block;
        std::size_t after = SIZE_MAX;  // the index of the very same block of the outcome
    };

    // A block of the outcome.
    struct After {
        std::uint32_t first;     // index of its first line
        std::uint32_t size;      // in lines
        bool same = false;       // no fix has touched it
        bool must_play = false;  // a player gets it from the whole track
        check::Fate fate = check::Fate::kFailed;
        check::PlayedCue cue{};
    };

    struct Whole {
        std::vector<check::PlayedCue> cues;
        double offset = 0;
        bool cut = false;  // the module gave up before the end
    };

    Whole Play(std::string_view track);
    void ReadBefore();
    void FindBefore(After& block, const Document& outcome, std::size_t& next);
    std::optional<std::string> AccountForBefore(const Whole& whole, const Document& outcome);
    std::optional<std::string> AccountForAfter(const Whole& whole);
    static bool IsMeantForCue(const Document& outcome, const Range& block);
    bool CostsCue(const Document& outcome, const Range& block);
    const check::Verdict& Ask(const Before& before);
    bool KeepText(const Before& before, const Document& outcome);

    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    Oracle& oracle_;
    std::string_view track_;
    std::vector<Before> befores_;
    std::vector<After> afters_;
    std::string text_;                   // of the outcome
    std::optional<std::string> broken_;  // a note that does not hold
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_VERIFIER_H_
