#include "tools/check/track_report.h"

namespace quill::check {

void TrackReport::Say(const Findings& findings) {
    for (const Finding& finding : findings) {
        Say(finding);
    }
}

void TrackReport::Say(const Finding& finding) {
    if (!filter_.Lets(*finding.code)) {
        return;
    }
    sums_.AddFinding(finding);
    progress_.Wipe();
    sink_.Add(finding);
}

void TrackReport::ShowProgress(std::uint64_t done, std::uint64_t all) {
    if (progress_.IsDue()) {
        progress_.Show(name_ + ": " + std::to_string(done * 100 / all) + "%");
    }
}

}  // namespace quill::check
