// Delivered records, read by numeric offset.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/value_at.h"

namespace support {

/// A copy of one cue record, all 48 bytes of it accounted for but the padding.
struct CueRecord {
    /// Of a cue without settings and without a text.
    CueRecord() = default;
    explicit CueRecord(const void* record)
        : has_aux_text(value_at<const char*>(record, 0) != nullptr),
          start(value_at<double>(record, 8)),
          end(value_at<double>(record, 16)),
          line(value_at<std::int32_t>(record, 28)),
          reserved(value_at<std::uint8_t>(record, 32)),
          snap_to_lines(value_at<std::uint8_t>(record, 33)),
          position(value_at<std::uint8_t>(record, 34)),
          size(value_at<std::uint8_t>(record, 35)),
          text_align(value_at<std::int32_t>(record, 36)),
          vertical(value_at<std::int32_t>(record, 40)) {
        const char* const bytes = value_at<const char*>(record, 24);
        has_text = bytes != nullptr;
        text = has_text ? bytes : "";
    }

    static const void* next_of(const void* record) { return value_at<const void*>(record, 44); }

    bool has_aux_text = false;
    double start = 0;
    double end = 0;
    bool has_text = false;
    std::string text;
    int line = 100;
    unsigned reserved = 0;
    unsigned snap_to_lines = 1;
    unsigned position = 50;
    unsigned size = 100;
    int text_align = 1;
    int vertical = 0;
};

/// What one delivery handed over.
struct Delivery {
    /// Reads the info block that the callback gets and the list behind it.
    explicit Delivery(const void* info)
        : count(value_at<std::uint32_t>(info, 4)), reserved(value_at<std::uint32_t>(info, 8)) {
        const void* record = value_at<const void*>(info, 0);
        for (; record != nullptr && cues.size() < kMostCues; record = CueRecord::next_of(record)) {
            cues.emplace_back(record);
        }
        has_end = record == nullptr;
    }

    /// More than any test delivers. A list that is linked in a circle must not fill the memory.
    static constexpr std::size_t kMostCues = 50000;

    std::vector<CueRecord> cues;
    std::uint32_t count;
    std::uint32_t reserved;
    bool has_end;
};

}  // namespace support
