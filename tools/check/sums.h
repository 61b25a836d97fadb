// The sums of a track.
#ifndef TOOLS_CHECK_SUMS_H_
#define TOOLS_CHECK_SUMS_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "tools/check/finding.h"

namespace quill::check {

// What a byte of a track is part of; each is part of one.
enum class ByteClass {
    kSignature,
    kHeaderUsed,
    kHeaderIgnored,
    kBlank,
    kDelivered,
    kComment,
    kCut,
    kLost,
    kLostWithChunk,
    kRejected,
};
constexpr std::size_t kByteClassCount = 10;

const char* ByteClassName(ByteClass byte_class);

struct Sums {
    void AddBytes(ByteClass byte_class, std::size_t count) {
        bytes[static_cast<std::size_t>(byte_class)] += count;
    }
    void AddFinding(const Finding& finding);
    // Those of another track that was played in chunks of the same size.
    void Add(const Sums& other);

    // Throws Failure when the classes do not make up a track of that size.
    void CheckBytes(std::size_t track_size) const;

    std::uint64_t AllBytes() const;
    std::uint64_t Count(Severity severity) const {
        return findings[static_cast<std::size_t>(severity)];
    }
    std::uint64_t AllFindings() const;
    std::uint64_t Lost(Subject subject) const;

    std::uint32_t chunk_size = 0;  // 0: chunks of sizes of their own
    std::uint64_t cues_delivered = 0;
    std::uint64_t header_lines_used = 0;
    std::uint64_t header_lines_ignored = 0;
    std::uint64_t comments = 0;
    std::array<std::uint64_t, kByteClassCount> bytes{};
    std::array<std::uint64_t, 3> findings{};        // by severity
    std::array<std::uint64_t, kMostCodes> codes{};  // by the place of the code in the table
};

// What a run comes to.
struct Total {
    void Add(const Sums& track);

    std::uint64_t tracks = 0;  // that were checked
    std::uint64_t with_findings = 0;
    std::uint64_t failed = 0;  // could not be checked
    Sums sums;                 // of all others
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_SUMS_H_
