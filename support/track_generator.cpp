#include "support/track_generator.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "support/random_source.h"

namespace support {
namespace {

constexpr unsigned kSeed = 1;
constexpr unsigned kShortestLine = 25;
constexpr unsigned kLongestLine = 40;

constexpr const char* kWords[] = {
    "I",      "you",    "we",       "never", "saw",   "the",     "harbour", "lights", "again",
    "after",  "that",   "night",    "wait",  "here",  "until",   "morning", "and",    "tell",
    "nobody", "what",   "happened", "on",    "board", "captain", "letter",  "from",   "your",
    "sister", "comes",  "back",     "with",  "money", "or",      "not",     "at",     "all",
    "please", "listen", "to",       "me",    "this",  "time",    "it",      "is",     "different",
};

// One more byte in every character, or nearly: accents, Cyrillic, Japanese.
constexpr const char* kForeignWords[] = {
    "caf\xC3\xA9",
    "\xC3\xBC"
    "ber",
    "ma\xC3\xB1"
    "ana",
    "gar\xC3\xA7on",
    "\xD0\xB4\xD0\xBE\xD0\xBC",
    "\xE6\xB5\xB7",
};

constexpr const char* kReferences[] = {"&amp;", "&lt;", "&gt;", "&nbsp;", "&lrm;"};

constexpr const char* kSettings[] = {
    "align:start", "align:middle", "align:end", "position:10%", "position:85%",
    "size:80%",    "line:0",       "line:-1",   "line:84%",     "align:left",
};

struct Markup {
    const char* open;
    const char* close;
};

constexpr Markup kMarkup[] = {
    {"<i>", "</i>"},          {"<b>", "</b>"},
    {"<v Anna>", "</v>"},     {"<v Captain Holm>", "</v>"},
    {"<c.yellow>", "</c>"},   {"<c.loud.red>", "</c>"},
    {"<lang fr>", "</lang>"},
};

/// Characters, not bytes.
unsigned characters(const std::string& text) {
    unsigned count = 0;
    for (const char c : text) {
        count += (static_cast<unsigned char>(c) & 0xC0u) != 0x80u ? 1 : 0;
    }
    return count;
}

std::string make_word(RandomSource& random) {
    if (random.one_in(60)) {
        return random.pick(kReferences);
    }
    return random.one_in(20) ? random.pick(kForeignWords) : random.pick(kWords);
}

std::string make_line(RandomSource& random) {
    const unsigned wanted = random.between(kShortestLine, kLongestLine);
    std::string line = make_word(random);
    for (;;) {
        const std::string longer = line + ' ' + make_word(random);
        if (characters(longer) > wanted && characters(line) >= kShortestLine) {
            return line;
        }
        line = longer;
    }
}

std::string make_payload(RandomSource& random) {
    std::string text = make_line(random);
    if (random.one_in(2)) {
        text += '\n' + make_line(random);
    }
    if (random.one_in(4)) {
        const Markup& markup = random.pick(kMarkup);
        text = markup.open + text + markup.close;
    }
    return text + '\n';
}

std::string make_settings(RandomSource& random, unsigned count) {
    std::string settings;
    for (; count > 0; --count) {
        settings += std::string(" ") + random.pick(kSettings);
    }
    return settings;
}

/// Hours, minutes, seconds and milliseconds; starts over after a hundred hours, or after one when
/// there are none.
std::string make_time(unsigned milliseconds, bool has_hours) {
    char text[48];
    const unsigned seconds = milliseconds / 1000;
    std::snprintf(text, sizeof(text), "%02u:%02u:%02u.%03u", seconds / 3600 % 100,
                  seconds / 60 % 60, seconds % 60, milliseconds % 1000);
    return text + (has_hours ? 0 : sizeof("00"));
}

std::string make_times(unsigned start, unsigned duration, bool has_hours) {
    return make_time(start, has_hours) + " --> " + make_time(start + duration, has_hours);
}

std::string with_line_ends(const std::string& track, std::string_view line_end) {
    std::string ended;
    ended.reserve(track.size() * 2);
    for (const char c : track) {
        ended += c == '\n' ? line_end : std::string_view(&c, 1);
    }
    return ended;
}

}  // namespace

const Style* find_style(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(kStyles), std::end(kStyles),
                     [name](const Style& style) { return style.name == name; });
    return found != std::end(kStyles) ? found : nullptr;
}

std::string make_dialogue(std::size_t size, const Style& style, unsigned* pCueCount) {
    RandomSource random(kSeed);
    std::string track = "WEBVTT - a dialogue\n\n";
    track.reserve(size + 512);
    unsigned now = 0;
    unsigned count = 0;
    while (track.size() < size) {
        ++count;
        if (random.one_in(5)) {
            track += std::to_string(count) + '\n';
        }
        now += random.between(200, 2000);
        const unsigned duration = random.between(900, 4500);
        track += make_times(now, duration, style.has_hours);
        now += duration;
        if (style.has_four_settings) {
            track += make_settings(random, 4);
        } else if (random.one_in(3)) {
            track += make_settings(random, random.between(1, 3));
        }
        track += '\n' + make_payload(random) + '\n';
    }
    if (pCueCount != nullptr) {
        *pCueCount = count;
    }
    return style.line_end == "\n" ? track : with_line_ends(track, style.line_end);
}

std::string make_plain_cues(unsigned count) {
    RandomSource random(kSeed);
    std::string track = "WEBVTT\n\n";
    for (unsigned cue = 0; cue < count; ++cue) {
        track += make_times(cue * 3000, 2500, true) + "\nWait here until morning, captain.\n\n";
    }
    return track;
}

}  // namespace support
