#include "tools/check/folding.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quill::check {
namespace {

constexpr std::size_t kMostShown = 3;

}  // namespace

void LineRange::Add(std::uint32_t line) {
    first = count == 0 ? line : first;
    last = line;
    ++count;
}

void Folding::Add(const Finding& finding) {
    Group& group = groups_[finding.code];
    for (Fold& fold : group.shown) {
        if (finding.cause_line != 0 && fold.finding.cause_line == finding.cause_line) {
            fold.others.Add(finding.line);
            return;
        }
    }
    if (group.shown.size() < kMostShown) {
        group.shown.push_back({Fold::Kind::kFinding, finding, {}});
        return;
    }
    if (group.rest.empty()) {
        group.rest.push_back({Fold::Kind::kRest, finding, {}});
    }
    group.rest.front().others.Add(finding.line);
}

std::vector<Fold> Folding::Take() {
    std::vector<Fold> folds;
    for (auto& [code, group] : groups_) {
        std::move(group.shown.begin(), group.shown.end(), std::back_inserter(folds));
        std::move(group.rest.begin(), group.rest.end(), std::back_inserter(folds));
    }
    groups_.clear();
    // As the map has the order of the table, those of one line stand in the order of their codes.
    std::stable_sort(folds.begin(), folds.end(),
                     [](const Fold& a, const Fold& b) { return a.finding.line < b.finding.line; });
    return folds;
}

}  // namespace quill::check
