#include "tools/check/file_kind.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>
#include <string>

#include "tools/check/characters.h"
#include "tools/check/meant_timing.h"
#include "tools/check/track_text.h"
#include "tools/console/escape.h"
#include "tools/console/suggestion.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kSignature = "WEBVTT";
// As far as is looked for what is not zero.
constexpr std::size_t kSearched = 1 << 10;

std::string_view WithoutBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

// Packets of 188 bytes, or of 192 with a time code before each.
bool IsTransportStream(std::string_view track) {
    constexpr char kSync = 0x47;
    const auto has_packets = [track](std::size_t begin, std::size_t size) {
        return track.size() > begin + size && track[begin] == kSync && track[begin + size] == kSync;
    };
    return has_packets(0, 188) || has_packets(4, 192);
}

// Times with decimal commas on the first line, or below a number.
bool IsSubRip(std::string_view text) {
    Line line = LineAt(text, 0);
    if (!line.text.empty() && line.end < text.size() &&
        line.text.find_first_not_of("0123456789 ") == std::string_view::npos) {
        line = LineAt(text, line.end);
        return HasArrow(line.text);
    }
    return HasArrow(line.text) && line.text.find(',') != std::string_view::npos;
}

// "0:00:01.000,0:00:02.000"
bool IsSbv(std::string_view text) {
    const std::optional<MeantTiming> meant = ReadMeantTiming(LineAt(text, 0).text);
    return meant && meant->arrow == "," && meant->has_thousandths && meant->is_certain;
}

struct Kind {
    const char* name;
    std::string words;
    std::string fix = {};
};

// What a file of the kind begins with. In the order of asking; letters of words are small, and
// match in any case.
struct Beginning {
    std::string_view bytes;
    const char* name;
    const char* words;
};

constexpr Beginning kBytes[] = {
    {"\x1F\x8B", "compressed", "gzip"},
    {"PK\x03\x04", "compressed", "a zip archive"},
    {"BZh", "compressed", "bzip2"},
    {"\xFD"
     "7zXZ",
     "compressed", "xz"},
    {"\x28\xB5\x2F\xFD", "compressed", "zstandard"},
    {"7z\xBC\xAF", "compressed", "a 7z archive"},
    {"\x1A\x45\xDF\xA3", "container", "Matroska"},
    {"ID3", "container", "packed audio"},
    {"\xFF\xFE\0\0"sv, "utf-16", "UTF-32, little-endian"},
    {"\0\0\xFE\xFF"sv, "utf-16", "UTF-32, big-endian"},
    {"\xFF\xFE", "utf-16", "UTF-16, little-endian"},
    {"W\0E\0"sv, "utf-16", "UTF-16, little-endian"},
    {"\xFE\xFF", "utf-16", "UTF-16, big-endian"},
    {"\0W\0E"sv, "utf-16", "UTF-16, big-endian"},
};

constexpr Beginning kWords[] = {
    {"<!doctype html", "html", "an HTML page"},
    {"<html", "html", "an HTML page"},
    {"<tt", "xml", "TTML"},
    {"<sami", "other-captions", "SAMI"},
    {"[script info]", "substation", "SubStation Alpha"},
    {"[v4", "substation", "SubStation Alpha"},
    {"dialogue:", "substation", "SubStation Alpha"},
    {"scenarist_scc", "other-captions", "Scenarist captions"},
    {"# vobsub", "other-captions", "VobSub"},
    {"#extm3u", "playlist", "an HLS playlist"},
    {"{\\rtf", "wrapped", "rich text"},
    {"%pdf", "wrapped", "PDF"},
    {"data:", "wrapped", "a data URL"},
    {"v0vcvlru", "wrapped", "a track in base64"},
    {"{\"error", "html", "an error message in JSON"},
    {"{\"message", "html", "an error message in JSON"},
    {"404", "html", "an error message"},
    {"403", "html", "an error message"},
    {"500", "html", "an error message"},
    {"502", "html", "an error message"},
    {"503", "html", "an error message"},
    {"not found", "html", "an error message"},
    {"access denied", "html", "an error message"},
    {"forbidden", "html", "an error message"},
    {"unauthorized", "html", "an error message"},
    {"error", "html", "an error message"},
};

// The first element of an XML document.
constexpr Beginning kElements[] = {
    {"<tt", "xml", "TTML"},
    {"<mpd", "playlist", "a DASH manifest"},
    {"<smoothstreamingmedia", "playlist", "a Smooth Streaming manifest"},
    {"<error", "html", "an error message in XML"},
    {"<html", "html", "an HTML page"},
};

constexpr std::string_view kBoxes[] = {"ftyp", "styp", "moof", "sidx", "emsg"};

Kind KindOfBytes(std::string_view track) {
    for (const Beginning& known : kBytes) {
        if (console::BeginsWith(track, known.bytes)) {
            return {known.name, known.words};
        }
    }
    for (const std::string_view box : kBoxes) {
        if (track.size() > 4 && console::BeginsWith(track.substr(4), box)) {
            return {"container", "MP4"};
        }
    }
    if (IsTransportStream(track)) {
        return {"transport-stream", "an MPEG transport stream"};
    }
    return {nullptr, ""};
}

std::string_view BehindPageComments(std::string_view text) {
    while (console::BeginsWith(text, "<!--")) {
        const std::size_t end = text.find("-->");
        text = end == std::string_view::npos ? std::string_view()
                                             : WithoutBlanks(text.substr(end + kArrow.size()));
    }
    return text;
}

Kind KindOfXml(std::string_view text) {
    const std::size_t end = text.find("?>");
    const std::string_view root = BehindPageComments(
        WithoutBlanks(text.substr(end == std::string_view::npos ? text.size() : end + 2)));
    for (const Beginning& known : kElements) {
        if (console::BeginsWithAnyCase(root, known.bytes)) {
            return {known.name, known.words};
        }
    }
    return {"xml", "XML"};
}

// "{25}{50}One" and "[00:01.00]One".
bool IsBraced(std::string_view text, char open, char close, std::string_view inside) {
    const std::size_t end = text.find(close);
    return text.substr(0, 1) == std::string_view(&open, 1) && end != std::string_view::npos &&
           end > 1 && text.substr(1, end - 1).find_first_not_of(inside) == std::string_view::npos;
}

Kind KindOfText(std::string_view text, bool has_mark) {
    text = BehindPageComments(text);
    if (console::BeginsWith(text, "<?xml")) {
        return KindOfXml(text);
    }
    for (const Beginning& known : kWords) {
        if (console::BeginsWithAnyCase(text, known.bytes)) {
            return {known.name, known.words};
        }
    }
    if (IsBraced(text, '{', '}', "0123456789")) {
        return {"other-captions", "MicroDVD"};
    }
    if (IsBraced(text, '[', ']', "0123456789:.")) {
        return {"other-captions", "LRC"};
    }
    if (console::BeginsWith(text, "{") || console::BeginsWith(text, "[")) {
        return {"json", "JSON"};
    }
    if (!text.empty() && IsSubRip(text)) {
        return has_mark ? Kind{"subrip", "SubRip, with a byte order mark",
                               "remove the mark, and put WEBVTT and a blank line above it and "
                               "points for the decimal commas"}
                        : Kind{"subrip", "SubRip"};
    }
    if (IsSbv(text)) {
        return {"subrip", "SBV",
                "put WEBVTT and a blank line above it and \" --> \" for the commas between the "
                "times"};
    }
    return {nullptr, ""};
}

// Not further down than an editor or a converter would put something.
bool HasLateSignature(std::string_view track) {
    constexpr std::size_t kNear = 1 << 10;
    return console::BeginsWith(WithoutBlanks(track), kSignature) ||
           track.substr(0, kNear).find("\nWEBVTT") != std::string_view::npos;
}

Finding ExplainMark(std::string_view track) {
    const bool twice =
        console::BeginsWith(track.substr(console::kByteOrderMark.size()), console::kByteOrderMark);
    return twice ? Finding(1, "two-marks", "the track begins with two byte order marks")
                 : Finding(1, "byte-order-mark", "the track begins with a byte order mark");
}

// But for one letter, or for what stands between its letters.
bool IsNearlySignature(std::string_view text) {
    std::string letters;
    for (const char c : text.substr(0, 2 * kSignature.size())) {
        if (std::string_view(" -_.[]").find(c) == std::string_view::npos) {
            letters += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    return console::Distance(letters, kSignature) <= 1;
}

// Something that begins with the signature, and goes on otherwise.
Finding ExplainSignature(std::string_view first) {
    const std::string_view behind = first.substr(kSignature.size());
    if (console::BeginsWith(behind, "\\n") || console::BeginsWith(behind, "\\r")) {
        const std::size_t size = console::BeginsWith(behind, "\\r\\n") ? 4 : 2;
        return {1, "signature", "the first line is " + Quoted(first),
                "write each " + std::string(behind.substr(0, size)) + " as a line end"};
    }
    const LookAlike* const hidden =
        FindLookAlike(behind.substr(0, console::FirstCharacter(behind).size));
    if (hidden == nullptr || !hidden->is_invisible()) {
        return {1, "signature", "the first line is " + Quoted(first)};
    }
    const bool is_line_end = hidden->code_point == 0x2028 || hidden->code_point == 0x2029 ||
                             hidden->code_point == 0x85 || hidden->code_point == 0x0B;
    return {1, "signature", NameOf(hidden->code_point) + " behind WEBVTT",
            is_line_end ? "end lines in a line feed" : "write a space for it, or nothing"};
}

Finding ExplainFirstLine(std::string_view track) {
    const std::string_view first = LineAt(track, 0).all;
    if (NearlySignatureSize(first) > 0) {
        return {1, "signature", "the first line is " + Quoted(first)};
    }
    if (console::BeginsWithAnyCase(track, "webvtt")) {
        return ExplainSignature(first);
    }
    if (HasLateSignature(track)) {
        return {1, "late-signature", "the signature is not at the beginning"};
    }
    if (HasArrow(first)) {
        return {1, "not-a-track", "the first line is a timing line",
                "put WEBVTT and a blank line above it"};
    }
    return {1, "not-a-track", "the first line is " + Quoted(first)};
}

}  // namespace

std::size_t NearlySignatureSize(std::string_view line) {
    constexpr std::string_view kFirst = "#[ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    if (line.empty() || kFirst.find(line[0]) == std::string_view::npos ||
        console::BeginsWithAnyCase(line, "webvtt")) {
        return 0;
    }
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    return IsNearlySignature(word) ? word.size() : IsNearlySignature(line) ? line.size() : 0;
}

Finding ExplainRejection(std::string_view track) {
    if (track.empty()) {
        return {1, "empty", "the file is empty"};
    }
    const bool has_mark = console::BeginsWith(track, console::kByteOrderMark);
    const std::string_view unmarked =
        has_mark ? track.substr(console::kByteOrderMark.size()) : track;
    if (track.substr(0, kSearched).find_first_not_of("\0\r\n"sv) == std::string_view::npos) {
        return {1, "empty", "the file is all zero bytes"};
    }
    Kind kind = KindOfBytes(track);
    if (kind.name == nullptr && !HasLateSignature(unmarked) &&
        NearlySignatureSize(LineAt(track, 0).all) == 0) {
        kind = KindOfText(WithoutBlanks(unmarked), has_mark);
    }
    if (kind.name != nullptr) {
        return {1, kind.name, "the file looks like " + kind.words, kind.fix};
    }
    return has_mark ? ExplainMark(track) : ExplainFirstLine(track);
}

}  // namespace quill::check
