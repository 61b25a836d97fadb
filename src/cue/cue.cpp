// A cue block, cut into identifier, timing line and payload:
//
//     identifier                                   (optional; any line without "-->")
//     00:01.000 --> 00:02.500 align:end size:50%   (spaces around the arrow are optional)
//     payload, up to the end of the block
#include "cue/cue.h"

#include "base/diagnostics.h"
#include "base/errors.h"
#include "base/text.h"
#include "base/value_parsers.h"

namespace webvtt {
namespace {

constexpr std::string_view kArrow = "-->";

}  // namespace

Cue::~Cue() {
    vReleaseNode(pRootNode);
}

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

bool Cue::fgParseForText(std::string_view block) {
    std::string_view payload;
    if (!fgParseHead(block, &payload)) {
        return false;
    }
    vReadPayloadText(payload);
    return true;
}

/// Parses all but the payload, which it finds.
bool Cue::fgParseHead(std::string_view block, std::string_view* pstrPayload) {
    Split line = split_line(block);
    if (line.head.empty() || !line.found) {
        print_error("Invalid Input String of 1st Line, return FALSE");
        return false;
    }
    Split times = split_first(line.head, kArrow);
    if (!times.found) {
        // That was the identifier. The next line is the timing line, whatever it looks like.
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
    vDeriveSettings();
    return true;
}

}  // namespace webvtt
