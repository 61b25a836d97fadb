#include "tools/check/report.h"

namespace quill::check {

void Report::AddFinding(const std::string& track, const Finding& finding) {
    Add(Format(track, finding));
}

void Report::AddSums(const std::string& track, const Sums& sums) {
    Add(Format(track, sums));
    Flush();
}

void Report::AddCode(const Code& code) {
    Add(Format(code));
}

void Report::Add(const std::string& text) {
    constexpr std::size_t kEnough = 64 << 10;
    pending_ += text;
    if (pending_.size() > kEnough) {
        Flush();
    }
}

void Report::Flush() {
    output_.Write(pending_);
    pending_.clear();
}

}  // namespace quill::check
