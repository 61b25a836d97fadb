#include "tools/check/file_kind.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>

#include "tools/check/track_text.h"

namespace quill::check {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::string_view kSignature = "WEBVTT";

bool BeginsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// The same for a prefix in small letters, whatever the case of the text.
bool BeginsWithAnyCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char wanted, char c) {
               return wanted == std::tolower(static_cast<unsigned char>(c));
           });
}

std::string_view WithoutBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

bool IsUtf16(std::string_view track) {
    return BeginsWith(track, "\xFF\xFE") || BeginsWith(track, "\xFE\xFF") ||
           BeginsWith(track, "W\0E\0"sv) || BeginsWith(track, "\0W\0E"sv);
}

bool IsTransportStream(std::string_view track) {
    constexpr std::size_t kPacketSize = 188;
    constexpr char kSync = 0x47;
    return track[0] == kSync && track.size() > kPacketSize && track[kPacketSize] == kSync;
}

// A number, and times below it.
bool IsSubRip(std::string_view text) {
    const Line number = LineAt(text, 0);
    if (number.text.empty() || number.end >= text.size() ||
        number.text.find_first_not_of("0123456789 ") != std::string_view::npos) {
        return false;
    }
    return LineAt(text, number.end).text.find("-->") != std::string_view::npos;
}

struct Kind {
    const char* name;
    std::string words;
};

Kind KindOfBytes(std::string_view track) {
    if (BeginsWith(track, "\x1F\x8B")) {
        return {"compressed", "gzip"};
    }
    if (BeginsWith(track, "PK\x03\x04")) {
        return {"compressed", "a zip archive"};
    }
    if (IsTransportStream(track)) {
        return {"transport-stream", "an MPEG transport stream"};
    }
    if (IsUtf16(track)) {
        const bool big = track[0] == '\xFE' || track[0] == '\0';
        return {"utf-16", big ? "UTF-16, big-endian" : "UTF-16, little-endian"};
    }
    return {nullptr, ""};
}

Kind KindOfText(std::string_view text) {
    if (BeginsWithAnyCase(text, "<!doctype html") || BeginsWithAnyCase(text, "<html")) {
        return {"html", "an HTML page"};
    }
    if (BeginsWith(text, "<?xml") || BeginsWith(text, "<tt")) {
        return {"xml", "XML, perhaps TTML"};
    }
    if (BeginsWith(text, "[Script Info]")) {
        return {"substation", "SubStation Alpha"};
    }
    if (!text.empty() && IsSubRip(text)) {
        return {"subrip", "SubRip"};
    }
    return {nullptr, ""};
}

Finding ExplainMark(std::string_view track) {
    const bool twice = BeginsWith(track.substr(kMark.size()), kMark);
    return twice ? Finding(1, "two-marks", "the track begins with two byte order marks")
                 : Finding(1, "byte-order-mark", "the track begins with a byte order mark");
}

Finding ExplainFirstLine(std::string_view track) {
    const std::string quoted = Quoted(LineAt(track, 0).all);
    if (BeginsWithAnyCase(track, "webvtt")) {
        return {1, "signature", "the first line is " + quoted};
    }
    if (BeginsWith(WithoutBlanks(track), kSignature)) {
        return {1, "late-signature", "the signature is not at the beginning"};
    }
    return {1, "not-a-track", "the first line is " + quoted};
}

}  // namespace

Finding ExplainRejection(std::string_view track) {
    if (track.empty()) {
        return {1, "empty", "the file is empty"};
    }
    const bool has_mark = BeginsWith(track, kMark);
    const std::string_view unmarked = has_mark ? track.substr(kMark.size()) : track;
    Kind kind = KindOfBytes(track);
    if (kind.name == nullptr) {
        kind = KindOfText(WithoutBlanks(unmarked));
    }
    if (kind.name != nullptr) {
        return {1, kind.name, "the file looks like " + kind.words};
    }
    return has_mark ? ExplainMark(track) : ExplainFirstLine(track);
}

}  // namespace quill::check
