#include "bench/shapes.h"

#include <algorithm>
#include <list>

#include "support/player.h"
#include "support/track_generator.h"

namespace bench {
namespace {

constexpr std::string_view kTimes = "00:01.000 --> 00:02.000";

std::string repeat(std::string_view text, std::size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (; count > 0; --count) {
        repeated += text;
    }
    return repeated;
}

std::string cue_of(std::string_view payload) {
    return std::string(kTimes) + "\n" + std::string(payload) + "\n\n";
}

/// A cue with this payload.
Play payload(std::string_view text) {
    Play play;
    play.text = cue_of(text);
    return play;
}

/// A cue whose timing line is this.
Play timing_line(const std::string& line) {
    Play play;
    play.text = line + "\nHi\n\n";
    return play;
}

/// Text behind the signature line, in the header section.
Play header(const std::string& text, std::size_t chunk_size) {
    Play play;
    play.opening = "WEBVTT\n";
    play.text = text + "\n\n" + cue_of("Hi");
    play.chunk_size = chunk_size;
    return play;
}

Play in_chunks_of(std::size_t chunk_size, Play play) {
    play.chunk_size = chunk_size;
    return play;
}

Play plain_text(std::string text) {
    Play play;
    play.text = std::move(text);
    return play;
}

// ---- Tracks as they are, and in other line ends ----

/// Behind the opening, which every play has.
Play dialogue(std::size_t n, const support::Style& style) {
    const std::string track = support::make_dialogue(n, style);
    const std::string blank_line = std::string(style.line_end) + std::string(style.line_end);
    return plain_text(track.substr(track.find(blank_line) + blank_line.size()));
}

/// n cues of the same size; the chunks are single cues.
Play cue_a_call(std::size_t n) {
    const std::string cue = cue_of("Hi there");
    return in_chunks_of(cue.size(), plain_text(repeat(cue, n)));
}

Play cues_in_one_call(std::size_t n) {
    Play play = cue_a_call(n);
    play.chunk_size = play.text.size();
    return play;
}

Play cues_kept_to_the_end(std::size_t n) {
    Play play = cue_a_call(n);
    play.delivery = Delivery::kAtTheEnd;
    return play;
}

// ---- A block or a line over many chunks ----

Play block_of_ten_lines(std::size_t n) {
    std::string text;
    for (unsigned line = 0; line < 9; ++line) {
        text += std::string(n / 9, 'x') + (line < 8 ? "\n" : "");
    }
    return in_chunks_of(1, payload(text));
}

/// In one chunk, behind a good block: without that the first bad one would end the call.
Play bad_start_times(std::size_t n) {
    Play play = plain_text(cue_of("Hi") + repeat("x --> y\nHi\n\n", n));
    play.chunk_size = play.text.size();
    return play;
}

// ---- Many parsers ----

Play live_handles(std::size_t n) {
    Play play = plain_text(cue_of("Hi"));
    play.parsers = static_cast<unsigned>(n);
    return play;
}

constexpr std::string_view kRegistry =
    "every call looks its handle up in a list, by design: players have one or two";

using N = std::size_t;

const std::vector<Shape> kShapes = {
    {"dialogue, 64 KB chunks", 100000, 10000000,
     [](N n) { return in_chunks_of(65536, dialogue(n, {})); }},
    {"dialogue, 1460 B chunks", 100000, 10000000, [](N n) { return dialogue(n, {}); }},
    {"dialogue, CR LF", 100000, 10000000,
     [](N n) { return dialogue(n, *support::find_style("crlf")); }},
    {"cues, one call", 2000, 1000000, cues_in_one_call},
    {"cues, a call and a delivery each", 1500, 1000000, cue_a_call},
    {"cues, a call each, one delivery", 1500, 1000000, cues_kept_to_the_end},

    {"payload line, 1 B chunks", 8000, 4000000,
     [](N n) { return in_chunks_of(1, payload(std::string(n, 'x'))); }},
    {"payload line, 188 B chunks", 200000, 4000000,
     [](N n) { return in_chunks_of(188, payload(std::string(n, 'x'))); }},
    {"payload line, 64 KB chunks", 1000000, 8000000,
     [](N n) { return in_chunks_of(65536, payload(std::string(n, 'x'))); }},
    {"header line, 1 B chunks", 15000, 4000000,
     [](N n) { return header("Region: id=" + std::string(n, 'x'), 1); }},
    {"header line, 188 B chunks", 500000, 8000000,
     [](N n) { return header("Region: id=" + std::string(n, 'x'), 188); }},
    {"header line, 64 KB chunks", 1000000, 8000000,
     [](N n) { return header("Region: id=" + std::string(n, 'x'), 65536); }},
    {"header line, one chunk", 500000, 8000000,
     [](N n) { return header("Region: id=" + std::string(n, 'x'), n + 100); }},
    {"block of ten lines, 1 B chunks", 8000, 1000000, block_of_ten_lines},

    {"spaces before the start time", 500000, 4000000,
     [](N n) { return timing_line(std::string(n, ' ') + std::string(kTimes)); }},
    {"spaces around the arrow", 500000, 4000000,
     [](N n) {
         const std::string spaces(n / 2, ' ');
         return timing_line("00:01.000" + spaces + "-->" + spaces + "00:02.000");
     }},
    {"spaces among settings", 200000, 1000000,
     [](N n) { return timing_line(std::string(kTimes) + std::string(n, ' ') + "align:end"); }},
    {"settings", 4000, 100000,
     [](N n) { return timing_line(std::string(kTimes) + repeat(" align:end line:5%,end", n)); }},
    {"settings that are dropped", 1500, 100000,
     [](N n) { return timing_line(std::string(kTimes) + repeat(" size:5 line:x none:y", n)); }},
    {"one long setting", 200000, 4000000,
     [](N n) { return timing_line(std::string(kTimes) + " size:" + std::string(n, '1') + "%"); }},
    {"identifier line", 1000000, 8000000,
     [](N n) { return plain_text(std::string(n, 'x') + "\n" + cue_of("Hi")); }},

    {"region line of spaces", 100000, 1000000,
     [](N n) { return header("Region:" + std::string(n, ' ') + "id=a", n * 2 + 100); }},
    {"region line of settings", 5000, 100000,
     [](N n) { return header("Region:" + repeat(" width=5% lines=3", n), n * 20 + 100); }},
    {"region lines", 3000, 100000,
     [](N n) { return header(repeat("Region: id=a\n", n), n * 20 + 100); }},
    {"map line of spaces", 500000, 4000000,
     [](N n) {
         return header("X-TIMESTAMP-MAP=" + std::string(n, ' ') + "LOCAL:00:00.000,MPEGTS:0",
                       n + 200);
     }},
    {"maps, a call each", 1500, 100000,
     [](N n) {
         const std::string map = "X-TIMESTAMP-MAP=LOCAL:00:00.000,MPEGTS:0\n";
         return header(repeat(map, n), map.size());
     }},

    {"<b> nested", 10000, 1000000, [](N n) { return payload(repeat("<b>", n)); }},
    {"<b> nested, and closed", 5000, 1000000,
     [](N n) { return payload(repeat("<b>", n) + repeat("</b>", n)); }},
    {"<b></b> side by side", 5000, 1000000, [](N n) { return payload(repeat("<b></b>", n)); }},
    {"<lang> nested, and closed", 5000, 1000000,
     [](N n) { return payload(repeat("<lang x>", n) + repeat("</lang>", n)); }},
    {"</b> without a start", 15000, 1000000, [](N n) { return payload(repeat("</b>", n)); }},
    {"</x>, not known", 4000, 1000000, [](N n) { return payload(repeat("</x>", n)); }},
    {"timestamp tags", 5000, 100000, [](N n) { return payload(repeat("<00:01.000>", n)); }},
    {"timestamp tags, not valid", 5000, 100000, [](N n) { return payload(repeat("<1:0>", n)); }},
    {"& in a row", 50000, 1000000, [](N n) { return payload(std::string(n, '&')); }},
    {"& and a long name", 200000, 4000000, [](N n) { return payload("&" + std::string(n, 'a')); }},
    {"&amp; in a row", 15000, 1000000, [](N n) { return payload(repeat("&amp;", n)); }},
    {"< in a row", 200000, 4000000, [](N n) { return payload(std::string(n, '<')); }},
    {"> in a row", 300000, 4000000, [](N n) { return payload(std::string(n, '>')); }},
    {"classes", 15000, 1000000, [](N n) { return payload("<c" + repeat(".a", n) + ">Hi"); }},
    {"a long class", 200000, 4000000,
     [](N n) { return payload("<c." + std::string(n, 'a') + ">Hi"); }},
    {"a long annotation", 200000, 4000000,
     [](N n) { return payload("<v " + std::string(n, 'a') + ">Hi"); }},
    {"a long tag name", 200000, 4000000, [](N n) { return payload("<" + std::string(n, 'b')); }},
    {"a long end tag", 200000, 4000000, [](N n) { return payload("</" + std::string(n, 'b')); }},

    {"empty lines", 60000, 10000000, [](N n) { return plain_text(std::string(n, '\n')); }},
    {"lone carriage returns", 60000, 10000000,
     [](N n) { return plain_text(std::string(n, '\r')); }},
    {"lines ended by CR", 20000, 1000000, [](N n) { return plain_text(repeat("ab\r", n)); }},
    {"zero bytes, 64 KB chunks", 1000000, 4000000,
     [](N n) { return in_chunks_of(65536, payload(std::string(n, '\0'))); }},
    {"zero bytes, 1 B chunks", 10000, 1000000,
     [](N n) { return in_chunks_of(1, payload(std::string(n, '\0'))); }},
    {"lines that begin with a zero", 40000, 4000000,
     [](N n) { return plain_text(repeat(std::string_view("\0a\n", 3), n)); }},
    {"blocks with a bad start time", 400, 100000, bad_start_times},
    {"blocks with a tag not known", 400, 100000,
     [](N n) {
         const std::string block = cue_of("<x>Hi");
         return in_chunks_of(block.size(), plain_text(repeat(block, n)));
     }},

    {"live handles", 200, 10000, live_handles, kRegistry},
};

void feed(support::Player& player, const Play& play) {
    player.feed(play.opening);
    std::string_view rest = play.text;
    while (!rest.empty()) {
        const std::string_view chunk = rest.substr(0, play.chunk_size);
        player.feed(chunk);
        if (play.delivery == Delivery::kAfterEachChunk) {
            player.deliver();
        }
        rest.remove_prefix(chunk.size());
    }
    player.deliver();
}

}  // namespace

const std::vector<Shape>& shapes() {
    return kShapes;
}

const Shape* find_shape(std::string_view name) {
    const auto found = std::find_if(kShapes.begin(), kShapes.end(),
                                    [name](const Shape& shape) { return shape.name == name; });
    return found != kShapes.end() ? &*found : nullptr;
}

Play empty_calls_of(const Play& play) {
    Play calls = play;
    calls.text = std::string((play.text.size() + play.chunk_size - 1) / play.chunk_size, 'x');
    calls.chunk_size = 1;
    return calls;
}

Tally play_shape(const support::Methods& methods, const Play& play) {
    std::list<support::Player> players;
    for (unsigned parser = 0; parser < play.parsers; ++parser) {
        players.emplace_back(methods);
    }
    Tally tally;
    for (support::Player& player : players) {
        feed(player, play);
        tally.bytes += play.opening.size() + play.text.size();
        tally.calls += player.call_count();
        tally.cues += player.cue_count();
    }
    return tally;
}

}  // namespace bench
