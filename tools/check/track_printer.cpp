#include "tools/check/track_printer.h"

#include <cstddef>
#include <utility>

namespace quill::check {

TrackPrinter::TrackPrinter(std::string track, const Printing& printing, Write write)
    : track_(std::move(track)), printing_(printing), write_(std::move(write)) {}

void TrackPrinter::Add(const Finding& finding) {
    if (printing_.folds) {
        folding_.Add(finding);
    } else {
        Print(printing_.report->Format(track_, {Fold::Kind::kFinding, finding, {}}));
    }
}

void TrackPrinter::Note(const BlockNote& note) {
    if (printing_.blocks) {
        Print(printing_.report->Format(track_, note));
    }
}

void TrackPrinter::Finish(const Sums& sums) {
    for (const Fold& fold : folding_.Take()) {
        Print(printing_.report->Format(track_, fold));
    }
    if (printing_.sums != SumsWanted::kNone) {
        Print(printing_.report->Format(track_, sums, printing_.sums == SumsWanted::kInFull));
    }
    Flush();
}

void TrackPrinter::Print(const std::string& text) {
    constexpr std::size_t kEnough = 64 << 10;
    pending_ += text;
    if (pending_.size() > kEnough) {
        Flush();
    }
}

void TrackPrinter::Flush() {
    if (!pending_.empty()) {
        write_(pending_);
        pending_.clear();
    }
}

}  // namespace quill::check
