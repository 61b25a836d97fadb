// Chunk borders do not show: a track gives the same cues whole and in chunks.
//
// An input is what follows the header section of a track. The byte FF, which UTF-8 never has, is
// not part of it: a chunk ends there. Feeding byte by byte costs ten times as much as anything
// else, so only a short input is fed that way, and one of sixteen others.
//
// Where a border does show, the input is changed or the comparison loosened:
//   - A block that is lost may take the rest of its chunk with it. The whole track is compared as
//     far as it was read, and begins with a sound block, behind which a bad start time costs its
//     own block only. If not every block became a cue, a chunk ends behind each line as well.
//   - A zero byte hides the rest of its line, but not what lies in the next chunk: none is left.
//   - A CR at the end of a chunk takes a LF with it even if that begins a later chunk than the
//     next: only CR LF pairs are left.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "api/entry_points.h"
#include "fuzz/check.h"
#include "fuzz/mutator.h"
#include "fuzz/shown_pieces.h"
#include "support/parser.h"

namespace {

constexpr unsigned kMostLines = 10;
constexpr char kBorder = '\xFF';
constexpr std::string_view kHeader = "WEBVTT\n\n";
constexpr std::string_view kBeginning = "WEBVTT\n\n00:00.000 --> 00:01.000\nsound\n\n";
constexpr std::string_view kEnd = "\n\n\n";
constexpr std::size_t kShort = 16;  // bytes

struct Played {
    std::vector<support::CueRecord> cues;
    bool was_read_whole = true;
};

using Borders = std::vector<std::size_t>;  // where chunks end, in ascending order

/// Feeds the track with a chunk for each border and one for the rest. Asks for the cues behind each
/// chunk in which a line ended.
Played play(std::string_view text, const Borders& borders) {
    static const support::Methods kMethods = support::methods_at(WEBVTT_MODULE_INFO.prMethods);
    support::Parser parser(kMethods);
    Played played;
    fuzz::ShownPieces pieces(text);
    std::size_t at = 0;
    const auto feed_up_to = [&](std::size_t end) {
        const std::string_view chunk = text.substr(at, end - at);
        const support::Ending ending = parser.feed_in_place(pieces.show(end));
        at = end;
        played.was_read_whole &= ending == support::Ending::kOk;
        if (chunk.find_first_of("\r\n") == std::string_view::npos) {
            return;
        }
        std::vector<support::CueRecord> cues = parser.take();
        if (played.cues.empty()) {
            played.cues = std::move(cues);
        } else {
            std::move(cues.begin(), cues.end(), std::back_inserter(played.cues));
        }
    };
    for (const std::size_t border : borders) {
        feed_up_to(border);
    }
    feed_up_to(text.size());
    FUZZ_CHECK(parser.complaint().empty());
    return played;
}

bool is_same(const support::CueRecord& a, const support::CueRecord& b) {
    return a.start == b.start && a.end == b.end && a.text == b.text && a.line == b.line &&
           a.snap_to_lines == b.snap_to_lines && a.position == b.position && a.size == b.size &&
           a.text_align == b.text_align && a.vertical == b.vertical;
}

/// The track, without the bytes that show a border.
std::string read_input(std::string_view input, Borders& borders) {
    std::string text;
    text.reserve(kBeginning.size() + input.size() + kEnd.size());
    text = kBeginning;
    for (const char byte : input) {
        if (byte != kBorder) {
            text += byte == '\0' ? ' ' : byte;
        } else if (borders.empty() || borders.back() != text.size()) {
            borders.push_back(text.size());
        }
    }
    text += kEnd;
    for (std::size_t i = kBeginning.size(); i < text.size(); ++i) {
        const bool is_lone_cr = text[i] == '\r' && text[i + 1] != '\n';
        text[i] = is_lone_cr ? ' ' : text[i];
    }
    return text;
}

/// Whether every block became a cue, as far as that can be said without reading them: none has more
/// lines than a block may have.
bool is_sound(std::string_view text, std::size_t cues) {
    std::size_t blocks = 0;
    unsigned lines = 0;  // of the block so far
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        const bool is_blank = text.substr(0, end).find_first_not_of('\r') == std::string_view::npos;
        lines = is_blank ? 0 : lines + 1;
        blocks += lines == 1 ? 1 : 0;
        if (lines > kMostLines) {
            return false;
        }
        text.remove_prefix(end + 1);
    }
    return blocks == cues;
}

void add_line_ends(std::string_view text, Borders& borders) {
    for (std::size_t at = kBeginning.size(); at < text.size(); ++at) {
        if (text[at - 1] == '\n') {
            borders.push_back(at);
        }
    }
    std::sort(borders.begin(), borders.end());
    borders.erase(std::unique(borders.begin(), borders.end()), borders.end());
}

/// Always the same for the same input.
bool is_for_single_bytes(std::string_view text) {
    return text.size() <= kBeginning.size() + kShort ||
           std::hash<std::string_view>()(text) % 16 == 0;
}

void check_borders(const Played& whole, std::string_view text, const Borders& borders) {
    const Played cut = play(text, borders);
    FUZZ_CHECK(whole.was_read_whole == cut.was_read_whole);
    FUZZ_CHECK(whole.was_read_whole ? whole.cues.size() == cut.cues.size()
                                    : whole.cues.size() <= cut.cues.size());
    FUZZ_CHECK(std::equal(whole.cues.begin(), whole.cues.end(), cut.cues.begin(), is_same));
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t largest, unsigned seed) {
    return fuzz::mutate(fuzz::Format::kBlocks, data, size, largest, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Borders borders;
    const std::string text = read_input({reinterpret_cast<const char*>(data), size}, borders);
    const Played whole = play(text, {});
    FUZZ_CHECK(!whole.cues.empty());
    if (borders.empty() ||
        !is_sound(std::string_view(text).substr(kHeader.size()), whole.cues.size())) {
        add_line_ends(text, borders);
    }
    check_borders(whole, text, borders);
    if (is_for_single_bytes(text)) {
        Borders everywhere(text.size() - kBeginning.size());
        std::iota(everywhere.begin(), everywhere.end(), kBeginning.size());
        check_borders(whole, text, everywhere);
    }
    return 0;
}
