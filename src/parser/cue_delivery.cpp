// From a parsed cue to the host: records, their queue, the callback.
#include <new>

#include "base/errors.h"
#include "base/saturate.h"
#include "cue/cue.h"
#include "parser/webvtt_parser.h"

namespace webvtt {
namespace {

constexpr std::uint32_t kTicksPerSecond = 90000;

/// Whole seconds only: hosts have always been given times shifted by whole seconds.
double whole_seconds(unsigned long ticks) {
    const auto seconds = static_cast<std::int32_t>(ticks / kTicksPerSecond);  // 47,721 at most
    return static_cast<double>(seconds);
}

/// The low 8 bits: a size of 300% arrives as 44.
std::uint8_t to_byte(double percent) {
    return static_cast<std::uint8_t>(saturating_cast<std::uint32_t>(percent) & 0xFFu);
}

/// A record with its text right behind it; null when memory ran out. It is never destroyed: its
/// memory is the arena's.
WebvttCueNode* make_record(RecordArena& arena, std::string_view text) {
    void* const memory = arena.pvTake(sizeof(WebvttCueNode) + text.size() + 1);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* const record = new (memory) WebvttCueNode;
    record->pcText = reinterpret_cast<char*>(record + 1);
    record->pcText[text.copy(record->pcText, text.size())] = '\0';
    return record;
}

}  // namespace

void WebVTTParser::vAppendNewCue(const Cue* prCue) {
    // A cue that was parsed for its text has no tree, and none is walked.
    std::string text(prCue->strPlainText());
    if (prCue->pRootNode != nullptr) {
        text = prCue->strGetCueContent().text;
    }
    throw_unless_read(eAppendCue(*prCue, text));
}

Outcome WebVTTParser::eAppendCue(const Cue& cue, std::string_view text) {
    WebvttCueNode* const record = make_record(m_records, text);
    if (record == nullptr) {
        return Outcome::kNoRecord;
    }
    double offset = 0.0;
    if (prTimeStampHeader != nullptr && prTimeStampHeader->fgIsValid()) {
        offset = whole_seconds(prTimeStampHeader->u4MpegTs) - prTimeStampHeader->dLocalTime;
    }
    const double video = whole_seconds(u4VideoPts);
    // In this order: a sum of doubles depends on it in the last bit.
    record->dStartTime = (offset + cue.dStartTime) - video;
    record->dEndTime = (offset + cue.dEndTime) - video;
    record->i4Line = saturating_cast<std::int32_t>(cue.dLine);
    record->fgReserved = 0;
    record->u1Size = to_byte(cue.dSize);
    record->fgSnapToLines = cue.fgSnapToLines ? 1 : 0;
    record->u1Position = to_byte(cue.dPosition);
    record->eTextAlign = cue.eTextAlign;
    record->eVertical = cue.eVertical;

    prResultTail->prNext = record;
    prResultTail = record;
    return Outcome::kDone;
}

void WebVTTParser::vGetParseResult() {
    WebvttDataInfo info(tResultHead.prNext);
    // Not checked for null: a host registers its callback before it asks for results.
    pfnEventNotify(WEBVTT_EVENT_PARSE_RESULT, pvEventTag, &info);
    // From the head on, not from info: what the callback itself has caused to be queued goes too.
    vFreeQueue();
}

void WebVTTParser::vFreeQueue() {
    m_records.vFreeAll();
    tResultHead.prNext = nullptr;
    prResultTail = &tResultHead;
}

void WebVTTParser::vSetWebvttEventNty(void* pvTag,
                                      void (*pfnNotify)(WEBVTT_EVENT_T, void*, void*)) {
    if (pfnNotify != nullptr) {
        pfnEventNotify = pfnNotify;
        pvEventTag = pvTag;
    }
}

void WebVTTParser::vSetVideoPTS(unsigned long u4Pts) {
    u4VideoPts = u4Pts;
}

}  // namespace webvtt
