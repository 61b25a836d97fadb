// The sums of a track.
#ifndef TOOLS_CHECK_SUMS_H_
#define TOOLS_CHECK_SUMS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

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

    // Throws Failure when the classes do not make up a track of that size.
    void CheckBytes(std::size_t track_size) const;

    std::uint64_t AllBytes() const;
    std::uint32_t Count(Severity severity) const {
        return findings[static_cast<std::size_t>(severity)];
    }

    std::uint32_t cues_delivered = 0;
    std::uint32_t header_lines_used = 0;
    std::uint32_t header_lines_ignored = 0;
    std::uint32_t comments = 0;
    std::array<std::uint64_t, kByteClassCount> bytes{};
    std::array<std::uint32_t, 3> findings{};           // by severity
    std::map<std::string, std::uint32_t> lost_blocks;  // by the number of the code
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_SUMS_H_
