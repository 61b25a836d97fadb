// What the host's callback reads: flat records, in place.
//
// Their layout is a binary contract, the same on every 32-bit target and the same as that of the
// public header's C structs; result_records.cpp asserts both.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/target.h"
#include "cue/cue_types.h"

namespace webvtt {

/// One cue. It owns its texts. The times are aligned to 8 bytes, which i386 would not do of itself.
class WebvttCue {
  public:
    WebvttCue() = default;
    /// Copies each text that is not null.
    /// @throws std::bad_alloc memory ran out; nothing is left behind
    WebvttCue(const char* pcAux, const char* pcCueText);
    WebvttCue(const WebvttCue& other);
    WebvttCue& operator=(const WebvttCue&) = delete;
    ~WebvttCue();

    char* pcAuxText = nullptr;  ///< owned; always null in delivered records
    alignas(8) double dStartTime = 0.0;
    alignas(8) double dEndTime = 0.0;
    char* pcText = nullptr;  ///< owned
    std::int32_t i4Line = -1;
    std::uint8_t fgReserved = 0;
    std::uint8_t fgSnapToLines = 1;
    std::uint8_t u1Position = 0;
    std::uint8_t u1Size = 0;
    Text_Align_Type eTextAlign = Text_Align_Type::START;
    Vertical_Type eVertical = Vertical_Type::HORIZONTAL;
};

/// A cue in the result queue.
class WebvttCueNode : public WebvttCue {
  public:
    WebvttCueNode() = default;
    WebvttCueNode(const char* pcAux, const char* pcCueText) : WebvttCue(pcAux, pcCueText) {}
    /// A copy is not in the queue: its prNext is null.
    WebvttCueNode(const WebvttCueNode& other) : WebvttCue(other) {}
    /// Changes nothing, on purpose: a queued record is never overwritten.
    WebvttCueNode& operator=(const WebvttCueNode& other);

    // Lies in the base's tail padding, at offset 44.
    WebvttCueNode* prNext = nullptr;
};

/// The list that one delivery hands over; counts the records when it is made.
struct WebvttDataInfo {
    explicit WebvttDataInfo(WebvttCueNode* prFirst);

    WebvttCueNode* prCueList;
    std::uint32_t u4CueCount = 0;
    std::uint32_t u4Reserved = 0;
};

}  // namespace webvtt
