#include "tools/check/sums.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string>

#include "tools/console/failure.h"

namespace quill::check {
namespace {

template <std::size_t kSize>
void AddEach(std::array<std::uint64_t, kSize>& numbers,
             const std::array<std::uint64_t, kSize>& others) {
    std::transform(numbers.begin(), numbers.end(), others.begin(), numbers.begin(), std::plus<>());
}

}  // namespace

const char* ByteClassName(ByteClass byte_class) {
    static constexpr std::array<const char*, kByteClassCount> kNames = {
        "signature", "header used", "header ignored", "blank lines",     "delivered",
        "comments",  "cut off",     "lost",           "lost with chunk", "rejected"};
    return kNames.at(static_cast<std::size_t>(byte_class));
}

void Sums::AddFinding(const Finding& finding) {
    ++findings.at(static_cast<std::size_t>(finding.code->severity));
    ++codes.at(static_cast<std::size_t>(finding.code - Codes()));
}

void Sums::Add(const Sums& other) {
    chunk_size = other.chunk_size;
    cues_delivered += other.cues_delivered;
    header_lines_used += other.header_lines_used;
    header_lines_ignored += other.header_lines_ignored;
    comments += other.comments;
    AddEach(bytes, other.bytes);
    AddEach(findings, other.findings);
    AddEach(codes, other.codes);
}

std::uint64_t Sums::AllFindings() const {
    return std::accumulate(findings.begin(), findings.end(), std::uint64_t{0});
}

std::uint64_t Sums::Lost(Subject subject) const {
    std::uint64_t count = 0;
    for (std::size_t index = 0; index < CodeCount(); ++index) {
        const Code& code = Codes()[index];
        if (code.severity == Severity::kLost && code.lost == subject) {
            count += codes.at(index);
        }
    }
    return count;
}

std::uint64_t Sums::AllBytes() const {
    return std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
}

void Total::Add(const Sums& track) {
    ++tracks;
    with_findings += track.AllFindings() == 0 ? 0 : 1;
    sums.Add(track);
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
