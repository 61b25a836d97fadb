#include "tools/check/sums.h"

#include <numeric>

#include "tools/console/failure.h"

namespace quill::check {

const char* ByteClassName(ByteClass byte_class) {
    static constexpr std::array<const char*, kByteClassCount> kNames = {
        "signature", "header used", "header ignored", "blank lines",     "delivered",
        "comments",  "cut off",     "lost",           "lost with chunk", "rejected"};
    return kNames.at(static_cast<std::size_t>(byte_class));
}

void Sums::AddFinding(const Finding& finding) {
    ++findings.at(static_cast<std::size_t>(finding.code->severity));
    if (finding.code->severity == Severity::kLost) {
        ++lost_blocks[finding.code->number];
    }
}

std::uint64_t Sums::AllBytes() const {
    return std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
}

void Sums::CheckBytes(std::size_t track_size) const {
    if (AllBytes() != track_size) {
        throw console::Failure(console::kExitTrack, "the sums are wrong: they make up " +
                                                        std::to_string(AllBytes()) + " bytes of " +
                                                        std::to_string(track_size) +
                                                        "; please report this with the track");
    }
}

}  // namespace quill::check
