// Chunk borders do not show: a track gives the same cues whole and byte by byte.
//
// An input is what follows the header section of a track. Where a border does show, the input is
// changed or the comparison loosened:
//   - A block that is lost may take the rest of its chunk with it. The whole track is compared as
//     far as it was read, and begins with a sound block, behind which a bad start time costs its
//     own block only.
//   - A zero byte hides the rest of its line, but not what lies in the next chunk: none is left.
//   - A CR at the end of a chunk takes a LF with it even if that begins a later chunk than the
//     next: only CR LF pairs are left.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "api/entry_points.h"
#include "fuzz/check.h"
#include "support/parser.h"

namespace {

struct Played {
    std::vector<support::CueRecord> cues;
    bool was_read_whole = true;
};

/// Feeds the signature, and then the text in chunks of so many bytes.
Played play(std::string_view text, std::size_t chunk_size) {
    static const support::Methods kMethods = support::methods_at(WEBVTT_MODULE_INFO.prMethods);
    support::Parser parser(kMethods);
    FUZZ_CHECK(parser.feed("WEBVTT\n\n") == support::Ending::kOk);
    Played played;
    for (std::size_t at = 0; at < text.size(); at += chunk_size) {
        const support::Ending ending = parser.feed(text.substr(at, chunk_size));
        played.was_read_whole &= ending == support::Ending::kOk;
        for (support::CueRecord& cue : parser.take()) {
            played.cues.push_back(std::move(cue));
        }
    }
    FUZZ_CHECK(parser.complaint().empty());
    return played;
}

bool is_same(const support::CueRecord& a, const support::CueRecord& b) {
    return a.start == b.start && a.end == b.end && a.text == b.text && a.line == b.line &&
           a.snap_to_lines == b.snap_to_lines && a.position == b.position && a.size == b.size &&
           a.text_align == b.text_align && a.vertical == b.vertical;
}

/// Without the bytes that show a border.
std::string without_odd_bytes(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool is_lone_cr = text[i] == '\r' && text.substr(i + 1, 1) != "\n";
        result += text[i] == '\0' || is_lone_cr ? ' ' : text[i];
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text("00:00.000 --> 00:01.000\nsound\n\n");
    text += without_odd_bytes({reinterpret_cast<const char*>(data), size});
    text += "\n\n\n";

    const Played whole = play(text, text.size());
    const Played bytes = play(text, 1);
    FUZZ_CHECK(whole.was_read_whole == bytes.was_read_whole);
    FUZZ_CHECK(!whole.cues.empty());
    FUZZ_CHECK(whole.was_read_whole ? whole.cues.size() == bytes.cues.size()
                                    : whole.cues.size() <= bytes.cues.size());
    FUZZ_CHECK(std::equal(whole.cues.begin(), whole.cues.end(), bytes.cues.begin(), is_same));
    return 0;
}
