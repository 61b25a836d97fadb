#include "tools/fix/mender.h"

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

Mender::Mender(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               const Selection& selection)
    : module_(module), capture_(capture), selection_(selection), oracle_(module, capture) {}

std::optional<std::string> Mender::Fix(std::string_view track,
                                       std::unique_ptr<Document>& document) {
    Verifier verifier(module_, capture_, oracle_, track);
    std::set<std::uint32_t> frozen;
    for (;;) {
        document = std::make_unique<Document>(track, frozen);
        FixAll({*document, oracle_, selection_});
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

bool Mender::ChangesNoMore(const std::string& text) {
    std::unique_ptr<Document> document;
    return !Fix(text, document) && document->Text() == text;
}

Mended Mender::Mend(std::string_view track) {
    Mended mended;
    mended.problem = Fix(track, mended.document);
    mended.text = mended.document->Text();
    mended.left = Check(mended.text);
    if (mended.document->edits().empty() || mended.problem) {
        return mended;
    }
    if (const check::Finding* const finding = FindFixed(*mended.document, mended.left)) {
        mended.problem = "line " + std::to_string(finding->line) +
                         " of the outcome: " + finding->message + " [" + finding->code->number +
                         "]";
    } else if (!ChangesNoMore(mended.text)) {
        mended.problem = "a second run would change more";
    }
    return mended;
}

check::Findings Mender::Check(const std::string& track) {
    FindingKeeper keeper;
    console::Progress progress(false, std::chrono::milliseconds(0));
    check::TrackReport report("", keeper, progress);
    const bool has_line_end = track.find_first_of("\r\n") != std::string::npos;
    const std::string text = has_line_end ? track : track + "\n";
    check::TrackCheck check(module_, capture_, text, host::TrackReader::kReadSize, 0, report);
    check.Run(track.size());
    return keeper.findings;
}

}  // namespace quill::fix
