#include "tools/cues/track_player.h"

#include <optional>
#include <string>
#include <string_view>

#include "tools/console/message.h"
#include "tools/console/text.h"

namespace quill::cues {
namespace {

std::string_view Bytes(const host::Chunk& chunk) {
    return {chunk.data.get(), chunk.size};
}

// The first line with its end, or all that there is of it.
std::string_view FirstLine(std::string_view bytes) {
    const std::size_t end = bytes.find_first_of("\r\n");
    return end == std::string_view::npos ? bytes : bytes.substr(0, end + 1);
}

// Where in a track, of which `track_bytes` have been read, the chunk lies.
std::string DescribePlace(const host::Chunk& chunk, std::uint64_t track_bytes) {
    if (chunk.offset == track_bytes) {
        return "line feeds fed after the last of " + std::to_string(track_bytes) + " bytes";
    }
    return "bytes " + std::to_string(chunk.offset) + " to " + std::to_string(track_bytes - 1) +
           " (a chunk of " + std::to_string(track_bytes - chunk.offset) + ")";
}

std::string DescribeRejection(std::string_view first_line) {
    if (console::BeginsWith(first_line, console::kByteOrderMark)) {
        return "not a WebVTT track: it begins with a byte order mark";
    }
    constexpr std::size_t kShown = 40;
    const std::string_view line = first_line.substr(0, first_line.find_first_of("\r\n"));
    return "not a WebVTT track: its first line must be \"WEBVTT\", alone or followed by a space or "
           "a tab, and is \"" +
           std::string(line.substr(0, kShown)) + (line.size() > kShown ? "...\"" : "\"");
}

}  // namespace

TrackPlayer::TrackPlayer(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                         host::TrackReader& track, host::CueSink& sink)
    : module_(module), capture_(capture), track_(track), sink_(sink), parser_(module, capture) {}

bool TrackPlayer::Play() {
    std::optional<host::Chunk> chunk = track_.Next();
    if (!chunk) {
        Say(track_.name() + ": not a WebVTT track: it is empty");
        return false;
    }
    for (bool first = true; chunk; first = false, chunk = track_.Next()) {
        if (Feed(*chunk, first) == Fate::kRejected) {
            return false;
        }
        parser_.Deliver(sink_);
    }
    Feed(host::Chunk(host::kClosingLineFeeds.data(), host::kClosingLineFeeds.size(),
                     track_.offset()),
         false);
    parser_.Deliver(sink_);
    return !threw_;
}

TrackPlayer::Fate TrackPlayer::Feed(const host::Chunk& chunk, bool first) {
    host::CallNote& note = host::CallNote::Own();
    note.begin = chunk.offset;
    note.end = track_.offset();
    const std::string place = track_.name() + ": " + DescribePlace(chunk, track_.offset());
    try {
        if (parser_.Feed(chunk.data.get(), chunk.size) != WEBVTT_RESULT_ERROR) {
            return Fate::kTaken;
        }
    } catch (const host::ModuleThrew& error) {
        threw_ = true;
        Say(place + ": " + error.what() + "; the rest of this chunk is lost, reading goes on");
        return Fate::kTaken;
    }
    if (first && IsRejected(chunk)) {
        Say(track_.name() + ": " + DescribeRejection(FirstLine(Bytes(chunk))));
        return Fate::kRejected;
    }
    Say("warning: " + place +
        ": a start tag that is not known, or memory ran out; that cue and the rest of this chunk "
        "are lost, reading goes on");
    return Fate::kTaken;
}

void TrackPlayer::Say(const std::string& message) const {
    if (!quiet_) {
        console::Say(message);
    }
}

// A first chunk that holds cues may be refused for one of those. Its first line alone, fed to a
// parser of its own, tells the two apart.
bool TrackPlayer::IsRejected(const host::Chunk& first_chunk) {
    const host::DiagnosticsCapture::Mute mute(capture_);
    host::ParserHandle other(module_, capture_);
    const std::string_view line = FirstLine(Bytes(first_chunk));
    const host::Chunk line_chunk(line.data(), static_cast<unsigned int>(line.size()), 0);
    try {
        return other.Feed(line_chunk.data.get(), line_chunk.size) == WEBVTT_RESULT_ERROR;
    } catch (const host::ModuleThrew&) {
        return false;
    }
}

}  // namespace quill::cues
