#include "parser/result_records.h"

#include <cstddef>
#include <cstring>
#include <memory>

#include "quillcaption/quillcaption.h"

namespace webvtt {
namespace {

/// Null for null.
char* copy_text(const char* pcText) {
    if (pcText == nullptr) {
        return nullptr;
    }
    const std::size_t size = std::strlen(pcText) + 1;
    char* const copy = new char[size];
    std::memcpy(copy, pcText, size);
    return copy;
}

}  // namespace

// Delegates, so that the destructor frees the first text if the second one fails.
WebvttCue::WebvttCue(const char* pcAux, const char* pcCueText) : WebvttCue() {
    pcAuxText = copy_text(pcAux);
    pcText = copy_text(pcCueText);
}

// A record made as a copy of itself keeps all that it has, its texts included.
WebvttCue::WebvttCue(const WebvttCue& other)
    : pcAuxText(other.pcAuxText),
      dStartTime(other.dStartTime),
      dEndTime(other.dEndTime),
      pcText(other.pcText),
      i4Line(other.i4Line),
      fgReserved(other.fgReserved),
      fgSnapToLines(other.fgSnapToLines),
      u1Position(other.u1Position),
      u1Size(other.u1Size),
      eTextAlign(other.eTextAlign),
      eVertical(other.eVertical) {
    if (this == &other) {
        return;
    }
    std::unique_ptr<char[]> aux(copy_text(other.pcAuxText));
    pcText = copy_text(other.pcText);
    pcAuxText = aux.release();
}

WebvttCue::~WebvttCue() {
    delete[] pcText;
    delete[] pcAuxText;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment, cert-oop54-cpp): it assigns nothing.
WebvttCueNode& WebvttCueNode::operator=(const WebvttCueNode& /*other*/) {
    return *this;
}

WebvttDataInfo::WebvttDataInfo(WebvttCueNode* prFirst) : prCueList(prFirst) {
    for (const WebvttCueNode* node = prFirst; node != nullptr; node = node->prNext) {
        ++u4CueCount;
    }
}

// The records are what the public header says they are, field by field.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#define WEBVTT_SAME_PLACE(record, field)                                  \
    static_assert(offsetof(record, field) == offsetof(::record, field) && \
                      sizeof(record::field) == sizeof(::record::field),   \
                  #record "::" #field " differs from the public header")
WEBVTT_SAME_PLACE(WebvttCueNode, pcAuxText);
WEBVTT_SAME_PLACE(WebvttCueNode, dStartTime);
WEBVTT_SAME_PLACE(WebvttCueNode, dEndTime);
WEBVTT_SAME_PLACE(WebvttCueNode, pcText);
WEBVTT_SAME_PLACE(WebvttCueNode, i4Line);
WEBVTT_SAME_PLACE(WebvttCueNode, fgReserved);
WEBVTT_SAME_PLACE(WebvttCueNode, fgSnapToLines);
WEBVTT_SAME_PLACE(WebvttCueNode, u1Position);
WEBVTT_SAME_PLACE(WebvttCueNode, u1Size);
WEBVTT_SAME_PLACE(WebvttCueNode, eTextAlign);
WEBVTT_SAME_PLACE(WebvttCueNode, eVertical);
WEBVTT_SAME_PLACE(WebvttCueNode, prNext);
WEBVTT_SAME_PLACE(WebvttDataInfo, prCueList);
WEBVTT_SAME_PLACE(WebvttDataInfo, u4CueCount);
WEBVTT_SAME_PLACE(WebvttDataInfo, u4Reserved);
#pragma GCC diagnostic pop
static_assert(sizeof(WebvttCueNode) == 48 && alignof(WebvttCueNode) == 8, "cue record");
static_assert(sizeof(WebvttDataInfo) == 12, "info block");
static_assert(static_cast<int>(Text_Align_Type::RIGHT) == WEBVTT_TEXT_ALIGN_RIGHT &&
                  static_cast<int>(Text_Align_Type::LEFT) == WEBVTT_TEXT_ALIGN_LEFT &&
                  static_cast<int>(Text_Align_Type::END) == WEBVTT_TEXT_ALIGN_END &&
                  static_cast<int>(Text_Align_Type::MIDDLE) == WEBVTT_TEXT_ALIGN_MIDDLE &&
                  static_cast<int>(Text_Align_Type::START) == WEBVTT_TEXT_ALIGN_START,
              "text alignments");
static_assert(static_cast<int>(Vertical_Type::HORIZONTAL) == WEBVTT_VERTICAL_NONE &&
                  static_cast<int>(Vertical_Type::VERTICAL_GROWING_LEFT) ==
                      WEBVTT_VERTICAL_GROWING_LEFT &&
                  static_cast<int>(Vertical_Type::VERTICAL_GROWING_RIGHT) ==
                      WEBVTT_VERTICAL_GROWING_RIGHT,
              "writing directions");

}  // namespace webvtt
