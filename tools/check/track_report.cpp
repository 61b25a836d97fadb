#include "tools/check/track_report.h"

namespace quill {

void TrackReport::Say(const Findings& findings) {
    for (const Finding& finding : findings) {
        Say(finding);
    }
}

void TrackReport::Say(const Finding& finding) {
    sums_.AddFinding(finding);
    progress_.Wipe();
    report_.AddFinding(name_, finding);
}

}  // namespace quill
