#include "tools/cues/cue_format.h"

#include <cmath>
#include <string_view>
#include <vector>

#include "tools/console/cue_time.h"
#include "tools/console/escape.h"

namespace quill::cues {
namespace {

// The lines of a cue's text, safe to print. Each ends at a line feed, the last one may lack it.
std::vector<std::string> TextLines(const WebvttCueNode& cue) {
    std::string_view rest = cue.pcText != nullptr ? cue.pcText : "";
    std::vector<std::string> lines;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        lines.push_back(console::Escape(line, console::LineFeeds::kEscape));
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    }
    return lines;
}

// The track's word for a value, or the bare number for one that has no word.
template <std::size_t kCount>
std::string Word(const char* const (&words)[kCount], std::int32_t value) {
    const auto index = static_cast<std::size_t>(value);  // a negative value becomes a large one
    return index < kCount ? words[index] : std::to_string(value);
}

// The settings that a cue without any would not have, each with a space before it.
std::string Settings(const WebvttCueNode& cue) {
    static const char* const kAligns[] = {"start", "middle", "end", "left", "right"};
    static const char* const kVerticals[] = {"none", "lr", "rl"};
    std::string settings;
    if (cue.eTextAlign != WEBVTT_TEXT_ALIGN_MIDDLE) {
        settings += " align:" + Word(kAligns, cue.eTextAlign);
    }
    if (cue.u1Position != 50) {
        settings += " position:" + std::to_string(cue.u1Position) + "%";
    }
    if (cue.fgSnapToLines == 0) {
        settings += " line:" + std::to_string(cue.i4Line) + "%";
    } else if (cue.i4Line != 100) {
        settings += " line:" + std::to_string(cue.i4Line);
    }
    if (cue.u1Size != 100) {
        settings += " size:" + std::to_string(cue.u1Size) + "%";
    }
    if (cue.eVertical != WEBVTT_VERTICAL_NONE) {
        settings += " vertical:" + Word(kVerticals, cue.eVertical);
    }
    return settings;
}

std::string SrtTime(double seconds) {
    return console::FormatTime(std::isfinite(seconds) && seconds > 0 ? seconds : 0, ',');
}

bool IsBlank(const std::string& line) {
    return line.find_first_not_of(" \t") == std::string::npos;
}

}  // namespace

std::string FormatAsText(const WebvttCueNode& cue, std::uint64_t /*number*/) {
    const std::string settings = Settings(cue);
    std::string out =
        console::FormatTime(cue.dStartTime, '.') + " --> " + console::FormatTime(cue.dEndTime, '.');
    if (!settings.empty()) {
        out += " " + settings;  // two spaces in all, to set them off from the times
    }
    out += '\n';
    for (const std::string& line : TextLines(cue)) {
        out += "  " + line + "\n";
    }
    return out + "\n";
}

std::string FormatAsSrt(const WebvttCueNode& cue, std::uint64_t number) {
    std::string out = std::to_string(number) + "\n" + SrtTime(cue.dStartTime) + " --> " +
                      SrtTime(cue.dEndTime) + "\n";
    for (const std::string& line : TextLines(cue)) {
        if (!IsBlank(line)) {
            out += line + "\n";
        }
    }
    return out + "\n";
}

}  // namespace quill::cues
