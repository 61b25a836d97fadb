// A cue block, cut into identifier, timing line and payload:
//
//     identifier                                   (optional; any line without "-->")
//     00:01.000 --> 00:02.500 align:end size:50%   (spaces around the arrow are optional)
//     payload, up to the end of the block
#include "cue/cue.h"

#include "base/diagnostics.h"
#include "base/errors.h"
#include "base/text.h"
#include "base/usual_timestamp.h"
#include "base/value_parsers.h"

namespace webvtt {
namespace {

constexpr std::string_view kArrow = "-->";
constexpr std::string_view kUsualArrow = " --> ";

}  // namespace

bool Cue::fgParse(const char* pcLine, unsigned size) {
    if (size == 0 || pcLine == nullptr) {
        throw InvalidArgumentException("Input pcLine is empty", nullptr);
    }
    std::string_view payload;
    if (!fgParseHead(pcLine, &payload)) {
        return false;
    }
    fgParseCuePayload(payload.data(), static_cast<unsigned>(payload.size()));
    return true;
}

bool Cue::fgParseForText(std::string_view block, bool fgMayHaveMarkup, std::string& joined) {
    std::string_view payload;
    if (!fgParseHead(block, &payload)) {
        return false;
    }
    if (payload.empty()) {
        throw InvalidArgumentException("Input pcLine is empty", nullptr);
    }
    if (fgMayHaveMarkup) {
        vReadPayloadText(payload, joined);
    } else {
        m_plain_text = payload;  // where it lies: nothing is copied but into the record
    }
    return true;
}

/// Parses the timing line that nearly every block begins with, in place:
/// "00:01:02.000 --> 00:01:04.500", and a space and settings if there are any. False, with nothing
/// changed, for every other.
inline bool Cue::fgParseUsualHead(std::string_view block, std::string_view* pstrPayload) {
    constexpr std::size_t arrow_at = kUsualTimestampSize;
    constexpr std::size_t end_at = arrow_at + kUsualArrow.size();
    constexpr std::size_t settings_at = end_at + kUsualTimestampSize;
    double start = 0.0;
    double end = 0.0;
    if (block.size() <= settings_at || (block[settings_at] != '\n' && block[settings_at] != ' ') ||
        block.compare(arrow_at, kUsualArrow.size(), kUsualArrow) != 0 ||
        !parse_usual_timestamp(block.data(), start) ||
        !parse_usual_timestamp(block.data() + end_at, end)) {
        return false;
    }
    Split line{{}, block.substr(settings_at + 1), true};
    if (block[settings_at] == ' ') {
        line = split_line(line.tail);
        if (!line.found) {
            return false;
        }
        vParseSettings(line.head);
    }  // Without settings the fields stay what they are in a new cue.
    dStartTime = start;
    dEndTime = end;
    *pstrPayload = line.tail;
    return true;
}

/// Parses all but the payload, which it finds.
bool Cue::fgParseHead(std::string_view block, std::string_view* pstrPayload) {
    if (fgParseUsualHead(block, pstrPayload)) {
        return true;
    }
    Split line = split_line(block);
    if (line.head.empty() || !line.found) {
        print_error("Invalid Input String of 1st Line, return FALSE");
        return false;
    }
    Split times = split_first(line.head, kArrow);
    if (!times.found) {
        // That was the identifier. The next line is the timing line, whatever it looks like.
        if (fgParseUsualHead(line.tail, pstrPayload)) {
            return true;
        }
        line = split_line(line.tail);
        if (line.head.empty() || !line.found) {
            print_error("Invalid Input String of 2nd Line, return FALSE");
            return false;
        }
        times = split_first(line.head, kArrow);
    }
    if (!fgParseTimes(times)) {
        print_error("Parse Cue Time and Settings Failed");
        return false;
    }
    *pstrPayload = line.tail;
    return true;
}

bool Cue::fgParseCueTimeAndSettings(WebvttString& line) {
    const std::string consumed = std::move(line.text);
    line.text.clear();
    return fgParseTimes(split_first(consumed, kArrow));
}

/// @param times the timing line, cut at its first arrow
bool Cue::fgParseTimes(const Split& times) {
    if (!times.found) {
        return false;
    }
    const std::string_view start = trim_spaces(times.head);
    if (!parse_timestamp(start, dStartTime)) {
        // This throws while a bad end time only fails. Hosts tell the two apart by what is printed
        // and by which cues are missing after it, so both stay as they are.
        print_error("Invalid Start Time Stamp <%.*s>", WEBVTT_PRINTABLE(start));
        throw InvalidArgumentException("Input pcLine is empty", nullptr);
    }
    const Split rest = split_first(trim_spaces(times.tail), ' ');
    if (!parse_timestamp(rest.head, dEndTime)) {
        print_error("Invalid End Time Stamp <%.*s>", WEBVTT_PRINTABLE(rest.head));
        return false;
    }
    vParseSettings(rest.tail);
    return true;
}

}  // namespace webvtt
