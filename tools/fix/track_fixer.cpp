#include "tools/fix/track_fixer.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "tools/check/track_check.h"
#include "tools/fix/verifier.h"
#include "tools/host/track_reader.h"

namespace quill::fix {
namespace {

// Keeps findings instead of printing them.
class FindingKeeper : public check::FindingSink {
  public:
    void Add(const check::Finding& finding) override { findings.push_back(finding); }

    check::Findings findings;
};

// Whether the finding is on what an edit has put there, or taken away.
bool IsOn(const check::Finding& finding, const Edit& edit) {
    const auto names = [&finding](const std::string& text) {
        return !text.empty() && finding.message.find(check::Quoted(text)) != std::string::npos;
    };
    return names(edit.before) || names(edit.after) || edit.before == edit.after;
}

// The finding of something that was fixed, if there is one.
const check::Finding* FindFixed(const Document& document, const check::Findings& findings) {
    std::multimap<std::pair<std::uint32_t, const check::Code*>, const Edit*> fixed;
    for (const Edit& edit : document.edits()) {
        fixed.emplace(std::pair(edit.line, edit.code), &edit);
    }
    for (const check::Finding& finding : findings) {
        if (finding.line > document.lines().size()) {
            continue;
        }
        const std::uint32_t number = document.lines()[finding.line - 1].number;
        const auto [begin, end] = fixed.equal_range({number, finding.code});
        if (std::any_of(begin, end,
                        [&finding](const auto& one) { return IsOn(finding, *one.second); })) {
            return &finding;
        }
    }
    return nullptr;
}

}  // namespace

TrackFixer::TrackFixer(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                       const check::CodeFilter& filter)
    : module_(module),
      capture_(capture),
      filter_(filter),
      oracle_(module, capture),
      settings_(filter) {}

std::optional<std::string> TrackFixer::Fix(std::string_view track,
                                           std::unique_ptr<Document>& document) {
    Verifier verifier(module_, capture_, oracle_, track);
    std::set<std::uint32_t> frozen;
    for (;;) {
        document = std::make_unique<Document>(track, frozen);
        FixAll({*document, oracle_, settings_, filter_});
        if (document->edits().empty()) {
            return std::nullopt;
        }
        const std::size_t known = frozen.size();
        frozen.merge(verifier.Survey(*document));
        if (frozen.size() == known) {
            return verifier.Verify(*document, document->offset());
        }
    }
}

bool TrackFixer::ChangesNoMore(const std::string& text) {
    std::unique_ptr<Document> document;
    return !Fix(text, document) && document->Text() == text;
}

FixedTrack TrackFixer::Run(std::string_view track) {
    FixedTrack fixed;
    fixed.problem = Fix(track, fixed.document);
    fixed.text = fixed.document->Text();
    fixed.left = Check(fixed.text);
    if (fixed.document->edits().empty() || fixed.problem) {
        return fixed;
    }
    if (const check::Finding* const finding = FindFixed(*fixed.document, fixed.left)) {
        fixed.problem = "line " + std::to_string(finding->line) +
                        " of the outcome: " + finding->message + " [" + finding->code->number + "]";
    } else if (!ChangesNoMore(fixed.text)) {
        fixed.problem = "a second run would change more";
    }
    return fixed;
}

check::Findings TrackFixer::Check(const std::string& track) {
    FindingKeeper keeper;
    console::Progress progress(false, std::chrono::milliseconds(0));
    check::TrackReport report("", keeper, progress);
    const bool has_line_end = track.find_first_of("\r\n") != std::string::npos;
    const std::string text = has_line_end ? track : track + "\n";
    const check::ChunkPlan plan(text, host::TrackReader::kReadSize);
    check::TrackCheck check(module_, capture_, text, plan, 0, report);
    check.Run(track.size());
    return keeper.findings;
}

}  // namespace quill::fix
