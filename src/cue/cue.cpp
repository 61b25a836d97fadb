// A cue block, cut into identifier, timing line and payload:
//
//     identifier                                   (optional; any line without "-->")
//     00:01.000 --> 00:02.500 align:end size:50%   (spaces around the arrow are optional)
//     payload, up to the end of the block
#include "cue/cue.h"

#include "base/diagnostics.h"
#include "base/fast_paths.h"
#include "base/text.h"
#include "base/usual_timestamp.h"
#include "base/value_parsers.h"

namespace webvtt {
namespace {

constexpr std::string_view kArrow = "-->";
constexpr std::ptrdiff_t kUsualArrowSize = 5;

/// Whether " --> " is there.
bool is_usual_arrow(const char* c, const char* end) {
    return end - c >= kUsualArrowSize && c[0] == ' ' && c[1] == '-' && c[2] == '-' && c[3] == '>' &&
           c[4] == ' ';
}

}  // namespace

bool Cue::fgParse(const char* pcLine, unsigned size) {
    std::string_view payload;
    if (!throw_unless_read(size == 0 || pcLine == nullptr ? Outcome::kEmptyInput
                                                          : eParseHead(pcLine, &payload))) {
        return false;
    }
    return fgParseCuePayload(payload.data(), static_cast<unsigned>(payload.size()));
}

Outcome Cue::eParseForText(std::string_view block, char* pcOwn) {
    m_for_text = true;
    std::string_view payload;
    const Outcome head = eParseHead(block, &payload);
    if (head != Outcome::kDone) {
        return head;
    }
    if (payload.empty()) {
        return Outcome::kEmptyInput;
    }
    if (pcOwn != nullptr) {
        return eReadPayloadText(payload, pcOwn + (payload.data() - block.data()));
    }
    m_plain_text = payload;  // where it lies: nothing is copied but into the record
    return Outcome::kDone;
}

/// Parses the timing line that nearly every block begins with, in place:
/// "00:01:02.000 --> 00:01:04.500", with or without hours, and a space and settings if there are
/// any. False, with nothing changed, for every other.
inline bool Cue::fgParseUsualHead(std::string_view block, std::string_view* pstrPayload) {
    const char* const block_end = block.data() + block.size();
    double start = 0.0;
    double end = 0.0;
    const char* c = read_usual_timestamp(block.data(), block_end, start);
    if (c == nullptr || !is_usual_arrow(c, block_end)) {
        return false;
    }
    c = read_usual_timestamp(c + kUsualArrowSize, block_end, end);
    if (c == nullptr || c == block_end || (*c != '\n' && *c != ' ')) {
        return false;
    }
    Split line{{}, {c + 1, static_cast<std::size_t>(block_end - c - 1)}, true};
    const bool settings = *c == ' ';
    if (settings) {
        line = split_line(line.tail);
        if (!line.found) {
            return false;
        }
    }
    dStartTime = start;
    dEndTime = end;
    if (settings || !m_for_text) {  // without settings a new cue stays as it is
        vParseSettings(line.head);
    }
    *pstrPayload = line.tail;
    return true;
}

/// Parses all but the payload, which it finds.
Outcome Cue::eParseHead(std::string_view block, std::string_view* pstrPayload) {
    Split line{{}, block, true};
    Split times{{}, {}, false};
    // The first line is the identifier unless it has an arrow. The second one is the timing line,
    // whatever it looks like.
    for (const char* const number : {"1st", "2nd"}) {
        if (kFastPaths && fgParseUsualHead(line.tail, pstrPayload)) {
            return Outcome::kDone;
        }
        line = split_line(line.tail);
        if (line.head.empty() || !line.found) {
            print_error("Invalid Input String of %s Line, return FALSE", number);
            return Outcome::kRejected;
        }
        times = split_first(line.head, kArrow);
        if (times.found) {
            break;
        }
    }
    std::string_view left;
    const Outcome outcome = eParseTimes(times, left);
    if (outcome == Outcome::kRejected) {
        print_error("Parse Cue Time and Settings Failed");
    }
    *pstrPayload = line.tail;
    return outcome;
}

bool Cue::fgParseCueTimeAndSettings(WebvttString& line) {
    /// Takes from the line what was read of it, also when an exception leaves.
    struct Cutter {
        std::string& text;
        std::string_view left;  // a part of the text
        ~Cutter() {
            text.erase(0, left.empty() ? text.size()
                                       : static_cast<std::size_t>(left.data() - text.data()));
            text.resize(left.size());
        }
    } cutter{line.text, line.text};
    return throw_unless_read(eParseTimes(split_first(line.text, kArrow), cutter.left));
}

/// @param times the timing line, cut at its first arrow
/// @param left  is set to what is left of the line, when there was an arrow
Outcome Cue::eParseTimes(const Split& times, std::string_view& left) {
    if (!times.found) {
        return Outcome::kRejected;
    }
    left = trim_spaces(times.tail);
    const std::string_view start = trim_spaces(times.head);
    if (!parse_timestamp(start, dStartTime)) {
        // An error of another kind than a bad end time. Hosts tell the two apart by what is printed
        // and by which cues are missing after it, so both stay as they are.
        print_error("Invalid Start Time Stamp <%.*s>", WEBVTT_PRINTABLE(start));
        return Outcome::kEmptyInput;
    }
    const Split rest = split_first(left, ' ');
    left = rest.tail;
    if (!parse_timestamp(rest.head, dEndTime)) {
        print_error("Invalid End Time Stamp <%.*s>", WEBVTT_PRINTABLE(rest.head));
        return Outcome::kRejected;
    }
    vParseSettings(left);
    return Outcome::kDone;
}

}  // namespace webvtt
