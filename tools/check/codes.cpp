#include "tools/check/codes.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/console/suggestion.h"

namespace quill::check {
namespace {

constexpr Severity kLost = Severity::kLost;
constexpr Severity kChanged = Severity::kChanged;
constexpr Severity kRemark = Severity::kRemark;

constexpr char kTimeHint[] = "write MM:SS.mmm or HH:MM:SS.mmm";

constexpr Code kCodes[] = {
    // 1xx: lost for its own fault. From 130 on: the whole track.
    {"Q101", kLost, "start-time", "The start time is not valid", kTimeHint},
    {"Q102", kLost, "start-time-comma", "The start time has a decimal comma",
     "write a point before the milliseconds"},
    {"Q103", kLost, "end-time", "The end time is not valid", kTimeHint},
    {"Q104", kLost, "end-time-comma", "The end time has a decimal comma",
     "write a point before the milliseconds"},
    {"Q105", kLost, "no-times", "Neither of a block's first two lines is a timing line",
     "put a timing line above the text, or NOTE above a comment"},
    {"Q106", kLost, "lone-line", "A block is a single line and no timing line",
     "remove the blank line behind an identifier, or the line"},
    {"Q107", kLost, "late-times", "The timing line is the third line of its block or a later one",
     "an identifier is one line; end the block before with a blank line"},
    {"Q108", kLost, "no-text", "No text follows the timing line",
     "remove the blank line behind the timing line, or the cue"},
    {"Q109", kLost, "unknown-tag", "A start tag is not one of c, i, b, u, ruby, rt, v, lang",
     "remove the tag, or write &lt; for its bracket"},
    {"Q110", kLost, "unnamed-tag", "A \"<\" begins no tag", "write &lt;"},
    {"Q111", kLost, "line-setting", "A line setting has no number, and the module threw",
     "give it a number or a percentage"},
    {"Q112", kLost, "zero-byte-line", "A zero byte hides the end of the identifier or timing line",
     "remove the zero byte"},
    {"Q113", kLost, "times-in-header", "A timing line stands in the header, which holds no cues",
     "put a blank line below the first line"},
    {"Q114", kLost, "late-map", "An X-TIMESTAMP-MAP line stands behind the header",
     "move it up to the first line, with no blank line between"},
    {"Q115", kLost, "wrong-arrow", "The arrow between the times is not \"-->\"",
     "write two dashes and a bracket"},
    {"Q119", kLost, "other", "The module gave no cue for the block, for a reason not known here",
     "compare it with the blocks that are delivered"},
    {"Q121", kLost, "map-throws", "An X-TIMESTAMP-MAP line has one item only, and the module threw",
     "give it both MPEGTS: and LOCAL:, with a comma between"},
    {"Q131", kLost, "byte-order-mark", "The track begins with a byte order mark",
     "save it as UTF-8 without a mark"},
    {"Q132", kLost, "two-marks", "The track begins with two byte order marks",
     "save it as UTF-8 without a mark"},
    {"Q133", kLost, "utf-16", "The file looks like UTF-16", "save it as UTF-8 without a mark"},
    {"Q134", kLost, "subrip", "The file looks like SubRip (.srt)",
     "put WEBVTT and a blank line above it and points for the decimal commas"},
    {"Q135", kLost, "html", "The file looks like an HTML page",
     "a server may have sent an error page; look at it and fetch the track again"},
    {"Q136", kLost, "compressed", "The file looks compressed", "unpack it first"},
    {"Q137", kLost, "empty", "The file is empty", "fetch or export it again"},
    {"Q138", kLost, "transport-stream", "The file looks like an MPEG transport stream",
     "extract the text track first"},
    {"Q139", kLost, "substation", "The file looks like SubStation Alpha (.ass)",
     "convert it to WebVTT"},
    {"Q140", kLost, "xml", "The file looks like XML, perhaps TTML", "convert it to WebVTT"},
    {"Q141", kLost, "signature", "The first line is almost the signature",
     "write WEBVTT in capitals, alone or followed by a space or a tab"},
    {"Q142", kLost, "late-signature", "Something stands above the signature, or a space before it",
     "begin the file with WEBVTT"},
    {"Q149", kLost, "not-a-track", "The file does not look like a track",
     "begin the file with WEBVTT"},

    // 2xx: nothing is wrong with it, but with something in its chunk.
    {"Q201", kLost, "behind-error", "The first block that ended in the chunk gave the chunk up",
     "mend that block, or feed other chunks"},
    {"Q202", kLost, "behind-tag",
     "A block before it in the chunk has a start tag that is not known",
     "mend that block, or feed other chunks"},
    {"Q203", kLost, "behind-line-setting", "A block before it in the chunk made the module throw",
     "mend that block, or feed other chunks"},
    {"Q204", kLost, "behind-map", "The map header in its chunk made the module throw",
     "mend the X-TIMESTAMP-MAP line"},
    {"Q205", kLost, "taken-for-header", "The module was still reading the header",
     "mend the X-TIMESTAMP-MAP line"},
    {"Q206", kLost, "header-in-pieces", "A header line is cut into three chunks or more",
     "feed larger chunks"},
    {"Q207", kLost, "skipped-line-feed",
     "A line feed that began a chunk was taken for the second half of an earlier carriage return",
     "use one kind of line ends"},
    {"Q209", kLost, "in-chunk", "Delivered alone but not in its chunk",
     "compare with other chunk sizes"},

    // 3xx: delivered, but not as it was written.
    {"Q301", kChanged, "eleventh-line", "A block has more than ten lines; the rest is cut off",
     "split the cue"},
    {"Q302", kChanged, "zero-byte", "A zero byte hides the rest of its line",
     "remove the zero byte"},
    {"Q303", kChanged, "bare-ampersand", "A bare \"&\" is lost, with the letters behind it",
     "write &amp;"},
    {"Q304", kChanged, "open-tag", "A tag without \">\" swallows the text behind it",
     "close the tag, or write &lt;"},
    {"Q305", kChanged, "number-wraps", "A number does not fit and is delivered as another one",
     "use a percentage from 0% to 100%"},
    {"Q306", kChanged, "comment-shown", "A comment that holds a timing line is shown as a cue",
     "break the arrow, or remove the comment"},
    {"Q307", kChanged, "remains", "The remains of a block that was cut by a chunk make up a cue",
     "mend the block that ended the chunk"},
    {"Q308", kChanged, "chunked", "Delivered otherwise in its chunk than alone",
     "compare with other chunk sizes"},
    {"Q309", kChanged, "hours-wrap", "The hours do not fit in 32 bits of seconds",
     "use fewer hours"},

    // 4xx: delivered, or not meant to be.
    {"Q401", kRemark, "end-before-start", "The cue ends before it starts, or when it starts",
     "give it a later end"},
    {"Q403", kRemark, "unknown-setting", "A setting is not known and is dropped",
     "use region, vertical, line, size, position or align"},
    {"Q404", kRemark, "empty-setting", "A setting has no value and is dropped",
     "write name:value without spaces"},
    {"Q405", kRemark, "no-setting", "Something on the timing line is no setting and is dropped",
     "write name:value without spaces"},
    {"Q406", kRemark, "setting-value",
     "The value of a setting is not valid; the setting is dropped",
     "size and position take a percentage, line a number or a percentage"},
    {"Q407", kRemark, "setting-range", "The value of a setting is out of range and is dropped",
     "use a percentage from 0% to 100%"},
    {"Q408", kRemark, "align-keyword", "An alignment is not known and is taken for start",
     "use start, middle, end, left or right"},
    {"Q409", kRemark, "alignment-part",
     "The second part of a line or position is not known and is taken for start",
     "use start, middle or end"},
    {"Q410", kRemark, "vertical-keyword", "A writing direction is not known and is dropped",
     "use rl or lr"},
    {"Q411", kRemark, "fraction", "The fraction of a number is dropped", "use a whole number"},
    {"Q412", kRemark, "region", "Players are not told the region of a cue",
     "place the cue with line, position and size"},
    {"Q413", kRemark, "unknown-reference",
     "A character reference is not known and is shown as it is",
     "use amp, lt, gt, lrm, rlm or nbsp, or the character itself"},
    {"Q414", kRemark, "unknown-end-tag", "An end tag is not known and is dropped",
     "remove the tag"},
    {"Q415", kRemark, "time-tag", "A time tag is not valid and is dropped", kTimeHint},
    {"Q416", kRemark, "tag-line-end",
     "A line ends inside a tag's classes; its rest is shown as text", "write the tag on one line"},
    {"Q417", kRemark, "not-utf-8", "The text is not UTF-8, and is delivered as it is",
     "save the track as UTF-8"},
    {"Q418", kRemark, "last-blank-line",
     "No blank line ends the last cue, which a player may never show",
     "end the track with a blank line"},
    {"Q419", kRemark, "comment-arrow", "A comment holds an arrow and is read as a broken cue",
     "break the arrow: it can cost the rest of its chunk"},
    {"Q420", kRemark, "style-block", "A STYLE or REGION block is not read", "remove it"},
    {"Q421", kRemark, "map-item", "An item of the map header is neither MPEGTS: nor LOCAL:",
     "write X-TIMESTAMP-MAP=MPEGTS:ticks,LOCAL:HH:MM:SS.mmm without spaces"},
    {"Q422", kRemark, "map-value", "A value of the map header is not valid; no time is mapped",
     "write X-TIMESTAMP-MAP=MPEGTS:ticks,LOCAL:HH:MM:SS.mmm without spaces"},
    {"Q423", kRemark, "second-map", "A second map header in the same chunk is ignored",
     "keep the one that counts"},
};

}  // namespace

const char* SeverityName(Severity severity) {
    switch (severity) {
        case Severity::kLost:
            return "lost";
        case Severity::kChanged:
            return "changed";
        case Severity::kRemark:
            break;
    }
    return "remark";
}

const Code* Codes() {
    return kCodes;
}

static_assert(std::size(kCodes) <= kMostCodes);

std::size_t CodeCount() {
    return std::size(kCodes);
}

const Code& CodeNamed(std::string_view name) {
    for (const Code& code : kCodes) {
        if (code.name == name) {
            return code;
        }
    }
    throw std::logic_error("no code is named " + std::string(name));
}

const Code* FindCode(std::string_view number) {
    const Code* const code =
        std::find_if(std::begin(kCodes), std::end(kCodes),
                     [number](const Code& one) { return one.number == number; });
    return code == std::end(kCodes) ? nullptr : code;
}

std::string SuggestCode(std::string_view number) {
    std::vector<std::string> numbers;
    std::transform(std::begin(kCodes), std::end(kCodes), std::back_inserter(numbers),
                   [](const Code& code) { return code.number; });
    return console::Suggest(number, numbers);
}

}  // namespace quill::check
