// Fixes a track as far as that can be verified.
#ifndef TOOLS_FIX_TRACK_FIXER_H_
#define TOOLS_FIX_TRACK_FIXER_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/check/finding.h"
#include "tools/fix/document.h"
#include "tools/fix/fixer.h"
#include "tools/fix/oracle.h"

namespace quill::fix {

struct FixedTrack {
    std::unique_ptr<Document> document;
    std::string text;
    check::Findings left;  // what quill check says of the outcome
    // Why nothing may be written; nothing when all is verified.
    std::optional<std::string> problem;
};

class TrackFixer {
  public:
    // All that is given must outlive the fixer; the capture must collect.
    TrackFixer(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               const check::CodeFilter& filter);

    // The track must outlive the result.
    FixedTrack Run(std::string_view track);

  private:
    // Fixes all that comes to something: a block that gives no cue all the same stays as it is.
    // Returns why that cannot be verified, if it cannot.
    std::optional<std::string> Fix(std::string_view track, std::unique_ptr<Document>& document);
    bool ChangesNoMore(const std::string& text);
    check::Findings Check(const std::string& track);

    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    const check::CodeFilter& filter_;
    Oracle oracle_;
    SettingsFixer settings_;
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_TRACK_FIXER_H_
