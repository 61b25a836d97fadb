#include "tools/check/lone_parser.h"

#include <functional>
#include <utility>

#include "tools/check/module_words.h"
#include "tools/console/failure.h"
#include "tools/host/track_reader.h"

namespace quill::check {
namespace {

// A block may make the module print all of its text, escaped nowhere.
constexpr std::size_t kMostPrinted = 64 << 10;
// What has been printed is forgotten from time to time, so that it fills no memory.
constexpr std::uint64_t kMostKept = 1 << 20;

constexpr std::string_view kPlainCue = "00:00.000 --> 00:01.000\nx\n\n";

}  // namespace

void CueCopy::Assign(const WebvttCueNode& cue) {
    start = cue.dStartTime;
    end = cue.dEndTime;
    text = cue.pcText != nullptr ? cue.pcText : "";
    line = cue.i4Line;
    size = cue.u1Size;
    position = cue.u1Position;
    snap_to_lines = cue.fgSnapToLines != 0;
    align = cue.eTextAlign;
    vertical = cue.eVertical;
}

bool SameSettings(const CueCopy& one, const CueCopy& other) {
    return one.line == other.line && one.size == other.size && one.position == other.position &&
           one.snap_to_lines == other.snap_to_lines && one.align == other.align &&
           one.vertical == other.vertical;
}

std::uint32_t Fingerprint(const CueCopy& cue) {
    std::uint32_t hash = static_cast<std::uint32_t>(std::hash<std::string>()(cue.text));
    for (const int value :
         {static_cast<int>(cue.line), cue.size, cue.position, static_cast<int>(cue.snap_to_lines),
          static_cast<int>(cue.align), static_cast<int>(cue.vertical)}) {
        hash = hash * 31 + static_cast<std::uint32_t>(value);
    }
    return hash;
}

void LoneParser::Taker::Add(const WebvttCueNode& cue) {
    verdict_.fate = Fate::kDelivered;
    verdict_.cue.Assign(cue);
}

LoneParser::LoneParser(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                       std::string_view beginning)
    : capture_(capture), parser_(module, capture), taker_(verdict_) {
    capture_.Forget();
    parser_.Feed(beginning.data(), static_cast<unsigned int>(beginning.size()));
    if (beginning.substr(beginning.size() - 2) != "\n\n") {
        return;  // it is for header lines
    }
    capture_.Forget();
    if (Ask(kPlainCue).fate != Fate::kDelivered) {
        throw console::Failure(console::kExitTrack, "the module does not deliver an ordinary cue");
    }
    ordinary_ = capture_.kept() - printed_;
}

void LoneParser::Begin() {
    printed_ = capture_.kept();
    if (printed_ > kMostKept) {
        capture_.Forget();
        printed_ = 0;
    }
    verdict_.fate = Fate::kFailed;
    verdict_.printed.clear();
}

void LoneParser::Feed(std::string_view piece) {
    try {
        const int result = parser_.Feed(piece.data(), static_cast<unsigned int>(piece.size()));
        if (result == WEBVTT_RESULT_ERROR) {
            verdict_.fate = Fate::kRefused;
        } else if (result == WEBVTT_RESULT_HEADER) {
            verdict_.fate = Fate::kInHeader;
        }
    } catch (const host::ModuleThrew&) {
        verdict_.fate = Fate::kThrew;
    }
    parser_.Deliver(taker_);
}

const Verdict& LoneParser::End() {
    const std::uint64_t more = capture_.kept() - printed_;
    if (verdict_.fate == Fate::kDelivered && more == ordinary_) {
        return verdict_;
    }
    verdict_.printed = capture_.Read(printed_, kMostPrinted);
    if (verdict_.fate == Fate::kFailed && Says(verdict_.printed, words::kError)) {
        verdict_.fate = Fate::kError;
    }
    return verdict_;
}

LoneParser::Known& LoneParser::SlotOf(std::string_view piece) {
    constexpr std::size_t kSlots = 256;
    known_.resize(kSlots);
    return known_[std::hash<std::string_view>()(piece) % kSlots];
}

// Short pieces without a cue are often the same over and over, such as lines that something has
// torn apart: millions in a track, each of which the module would print some lines about.
const Verdict& LoneParser::Ask(std::string_view piece) {
    constexpr std::size_t kShort = 12;
    if (piece.size() > kShort) {
        Begin();
        Feed(piece);
        return End();
    }
    Known& known = SlotOf(piece);
    if (known.piece != piece) {
        Begin();
        Feed(piece);
        End();
        if (verdict_.fate != Fate::kFailed) {
            return verdict_;
        }
        known = {std::string(piece), verdict_};
    }
    return known.verdict;
}

const Verdict& LoneParser::AskOpen(std::string_view piece) {
    Begin();
    Feed(piece);
    Feed(host::kClosingLineFeeds);
    return End();
}

}  // namespace quill::check
