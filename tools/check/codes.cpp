#include "tools/check/codes.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/console/suggestion.h"

namespace quill::check {
namespace {

constexpr Severity kLost = Severity::kLost;
constexpr Severity kChanged = Severity::kChanged;
constexpr Severity kRemark = Severity::kRemark;
constexpr Subject kLine = Subject::kLine;
constexpr Subject kTrack = Subject::kTrack;

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
     "put a timing line above the text, or NOTE above a comment", kLine},
    {"Q106", kLost, "lone-line", "A block is a single line and no timing line",
     "remove the blank line that cuts it off, or the line", kLine},
    {"Q107", kLost, "late-times", "The timing line is the third line of its block or a later one",
     "put a blank line above it"},
    {"Q108", kLost, "no-text", "No text follows the timing line",
     "remove the blank line below it, or write a text"},
    {"Q109", kLost, "unknown-tag", "A start tag is not one of c, i, b, u, ruby, rt, v, lang",
     "remove the tag, or write &lt; for its bracket"},
    {"Q110", kLost, "unnamed-tag", "A \"<\" begins no tag", "write &lt;"},
    {"Q111", kLost, "line-setting", "A line setting has no number, and the module threw",
     "give it a number or a percentage"},
    {"Q112", kLost, "zero-byte-line", "A zero byte hides the end of the identifier or timing line",
     "remove the zero byte"},
    {"Q113", kLost, "times-in-header", "A timing line stands in the header, which holds no cues",
     "put a blank line above it"},
    {"Q114", kLost, "late-map", "An X-TIMESTAMP-MAP line stands behind the header",
     "move it up to the first line, with no blank line between", kLine},
    {"Q115", kLost, "wrong-arrow", "The arrow between the times is not \"-->\"", "write \"-->\""},
    {"Q116", kLost, "times-in-text", "A timing line stands in the text of a cue, and is shown",
     "put a blank line above it"},
    {"Q117", kLost, "looks-blank",
     "A line that only looks blank does not part what stands above and below it", "empty the line"},
    {"Q118", kLost, "two-returns", "A line ends in CR CR LF, which makes a blank line below it",
     "end lines in a line feed alone, or in CR LF"},
    {"Q119", kLost, "other", "The module gave no cue for the block, for a reason not known here",
     "compare it with the blocks that are delivered"},
    {"Q120", kLost, "second-track", "A second track begins inside the track", "remove the line",
     kLine},
    {"Q121", kLost, "map-throws", "An X-TIMESTAMP-MAP line has one item only, and the module threw",
     "give it both MPEGTS: and LOCAL:, with a comma between", kLine},
    {"Q122", kLost, "times-on-first-line", "A timing line stands on the first line",
     "put a blank line above the time, and each text on a line of its own"},
    {"Q123", kLost, "identifier-arrow",
     "An identifier holds an arrow and is taken for the timing line", "write it without \"-->\""},
    {"Q124", kLost, "page-comment", "The end of a comment as pages have it is taken for an arrow",
     "write NOTE above it, and leave its arrow out", kLine},
    {"Q131", kLost, "byte-order-mark", "The track begins with a byte order mark",
     "save it as UTF-8 without a mark", kTrack},
    {"Q132", kLost, "two-marks", "The track begins with two byte order marks",
     "save it as UTF-8 without a mark", kTrack},
    {"Q133", kLost, "utf-16", "The file looks like UTF-16 or UTF-32",
     "save it as UTF-8 without a mark", kTrack},
    {"Q134", kLost, "subrip", "The file looks like SubRip or its kin",
     "put WEBVTT and a blank line above it and points for the decimal commas", kTrack},
    {"Q135", kLost, "html", "The file looks like a page or an error message",
     "a server may have sent it; look at it and fetch the track again", kTrack},
    {"Q136", kLost, "compressed", "The file looks compressed", "unpack it first", kTrack},
    {"Q137", kLost, "empty", "The file is empty, or all zero bytes", "fetch or export it again",
     kTrack},
    {"Q138", kLost, "transport-stream", "The file looks like an MPEG transport stream",
     "extract the text track first", kTrack},
    {"Q139", kLost, "substation", "The file looks like SubStation Alpha (.ass)",
     "convert it to WebVTT", kTrack},
    {"Q140", kLost, "xml", "The file looks like XML", "convert it to WebVTT", kTrack},
    {"Q141", kLost, "signature", "The first line is almost the signature",
     "write WEBVTT in capitals, alone or followed by a space or a tab", kTrack},
    {"Q142", kLost, "late-signature", "Something stands above the signature, or a space before it",
     "begin the file with WEBVTT", kTrack},
    {"Q143", kLost, "playlist", "The file looks like a playlist or a manifest",
     "fetch the segments that it names", kTrack},
    {"Q144", kLost, "json", "The file looks like JSON", "convert it to WebVTT", kTrack},
    {"Q145", kLost, "other-captions", "The file looks like captions of another format",
     "convert it to WebVTT", kTrack},
    {"Q146", kLost, "container", "The file looks like a container of media",
     "extract the text track first", kTrack},
    {"Q147", kLost, "wrapped", "The file looks like a text in the clothes of another format",
     "save it as plain text, or decode it first", kTrack},
    {"Q149", kLost, "not-a-track", "The file does not look like a track",
     "begin the file with WEBVTT", kTrack},

    // 2xx: nothing is wrong with it, but with something in its chunk.
    {"Q201", kLost, "behind-error", "The first block that ended in the chunk gave the chunk up",
     "correct that block, or feed other chunks"},
    {"Q202", kLost, "behind-tag",
     "A block before it in the chunk has a start tag that is not known",
     "correct that block, or feed other chunks"},
    {"Q203", kLost, "behind-line-setting", "A block before it in the chunk made the module throw",
     "correct that block, or feed other chunks"},
    {"Q204", kLost, "behind-map", "The map header in its chunk made the module throw",
     "correct the X-TIMESTAMP-MAP line"},
    {"Q205", kLost, "taken-for-header", "The module was still reading the header",
     "correct the X-TIMESTAMP-MAP line"},
    {"Q206", kLost, "header-in-pieces", "A header line is cut into three chunks or more",
     "feed larger chunks", kLine},
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
     "correct the block that ended the chunk"},
    {"Q308", kChanged, "chunked", "Delivered otherwise in its chunk than alone",
     "compare with other chunk sizes"},
    {"Q309", kChanged, "hours-wrap", "The hours do not fit in 32 bits of seconds",
     "use fewer hours"},
    {"Q310", kChanged, "map-name",
     "The name of a map header is not as it has to be; no time is mapped",
     "write X-TIMESTAMP-MAP=MPEGTS:ticks,LOCAL:HH:MM:SS.mmm at the beginning of the line"},
    {"Q311", kChanged, "map-number",
     "The number of a map header does not fit; times are mapped otherwise",
     "use a number below 4294967295"},
    {"Q312", kChanged, "map-on-first-line",
     "A map header stands on the first line; no time is mapped",
     "put it on a line of its own below the first"},
    {"Q313", kChanged, "before-zero", "A cue ends before the video begins, when it is mapped",
     "raise MPEGTS in the map, lower LOCAL, or add to the times"},

    // 4xx: settings, and what is worth a look.
    {"Q401", kRemark, "end-before-start", "The cue ends before it starts, or when it starts",
     "give it a later end"},
    {"Q403", kChanged, "unknown-setting", "A setting is not known and is dropped",
     "remove it, or use vertical, line, size, position or align"},
    {"Q404", kChanged, "empty-setting", "A setting has no value and is dropped",
     "write name:value without spaces"},
    {"Q405", kChanged, "no-setting", "Something on the timing line is no setting and is dropped",
     "write name:value without spaces"},
    {"Q406", kChanged, "setting-value",
     "The value of a setting is not valid; the setting is dropped",
     "size and position take a percentage, line a number or a percentage"},
    {"Q407", kChanged, "setting-range", "The value of a setting is out of range and is dropped",
     "use a percentage from 0% to 100%"},
    {"Q408", kChanged, "align-keyword", "An alignment is not known and is taken for start",
     "use start, middle, end, left or right"},
    {"Q409", kRemark, "alignment-part",
     "The second part of a line or position is not known and is taken for start",
     "use start, middle or end"},
    {"Q410", kChanged, "vertical-keyword", "A writing direction is not known and is dropped",
     "use rl or lr"},
    {"Q411", kChanged, "fraction", "The fraction of a number is dropped", "use a whole number"},
    {"Q412", kChanged, "region", "Players are not told the region of a cue",
     "place the cue with line, position and size"},
    {"Q413", kRemark, "unknown-reference",
     "A character reference is not known and is shown as it is",
     "use amp, lt, gt, lrm, rlm or nbsp, or the character itself"},
    {"Q414", kRemark, "unknown-end-tag", "An end tag is not known and is dropped",
     "remove the tag"},
    {"Q415", kRemark, "time-tag", "A time tag is not valid and is dropped", kTimeHint},
    {"Q416", kChanged, "tag-line-end",
     "A line ends inside a tag's classes; its rest is shown as text", "write the tag on one line"},
    {"Q417", kRemark, "not-utf-8", "The text is not UTF-8, and is delivered as it is",
     "save the track as UTF-8"},
    {"Q418", kRemark, "last-blank-line",
     "No blank line ends the last cue, which a player may never show",
     "end the track with a blank line"},
    {"Q419", kRemark, "comment-arrow", "A comment holds an arrow and is read as a broken cue",
     "break the arrow: it can cost the rest of its chunk"},
    {"Q420", kRemark, "style-block", "A STYLE or REGION block is not read", "remove it"},
    {"Q421", kChanged, "map-item", "An item of the map header is neither MPEGTS: nor LOCAL:",
     "write X-TIMESTAMP-MAP=MPEGTS:ticks,LOCAL:HH:MM:SS.mmm without spaces"},
    {"Q422", kChanged, "map-value", "A value of the map header is not valid; no time is mapped",
     "write X-TIMESTAMP-MAP=MPEGTS:ticks,LOCAL:HH:MM:SS.mmm without spaces"},
    {"Q423", kRemark, "second-map", "A second map header in the same chunk is ignored",
     "remove it: the first counts"},
    {"Q424", kRemark, "no-cues", "A track has no cue", "look whether it is the right file"},
    {"Q425", kRemark, "size-range", "A size is wider than the screen", "write \"size:100%\""},
    {"Q426", kRemark, "out-of-order", "A cue starts before the cue above it",
     "move it, so that cues stand in the order of their starts"},
    {"Q427", kRemark, "overlap", "A cue starts before one above it ends, in the same place",
     "end the earlier one sooner, or place one of them elsewhere"},
    {"Q428", kRemark, "repeated", "A cue is the same as one above it", "remove it"},
    {"Q429", kRemark, "long-cue", "A cue lasts an hour or longer", "look at its end"},
    {"Q430", kRemark, "blank-text", "A cue shows nothing", "write a text below it, or remove it"},
    {"Q431", kRemark, "escaped-twice",
     "A character reference was written twice, and is shown as it is",
     "write the character itself"},
    {"Q432", kRemark, "note-in-text", "A comment stands in the text of a cue, and is shown",
     "put a blank line above it"},
    {"Q433", kRemark, "foreign-code", "A code of another format is shown as text", "remove it"},
    {"Q434", kRemark, "encoded-twice", "A character looks like UTF-8 that was encoded twice",
     "save the track once more as what it was"},
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

// Asked for every finding, of which a track can have millions.
const Code& CodeNamed(std::string_view name) {
    static const std::unordered_map<std::string_view, const Code*> known = [] {
        std::unordered_map<std::string_view, const Code*> codes;
        for (const Code& code : kCodes) {
            codes.emplace(code.name, &code);
        }
        return codes;
    }();
    const auto found = known.find(name);
    if (found == known.end()) {
        throw std::logic_error("no code is named " + std::string(name));
    }
    return *found->second;
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
