// The first line: byte order marks, and the signature that a track begins with.
#include <algorithm>
#include <cctype>

#include "tools/fix/characters.h"
#include "tools/fix/fixer.h"
#include "tools/fix/timing_reading.h"

namespace quill::fix {
namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::string_view kSignature = "WEBVTT";

bool IsSignature(std::string_view line) {
    return line.substr(0, kSignature.size()) == kSignature &&
           (line.size() == kSignature.size() || line[kSignature.size()] == ' ' ||
            line[kSignature.size()] == '\t');
}

// The signature as it should have been written: in capitals, with a space behind it. Nothing when
// the line is none.
std::string Straightened(std::string_view line) {
    const std::string_view word = line.substr(0, kSignature.size());
    const std::string_view rest = line.substr(word.size());
    const bool is_word = std::equal(
        word.begin(), word.end(), kSignature.begin(), kSignature.end(),
        [](char c, char wanted) { return std::toupper(static_cast<unsigned char>(c)) == wanted; });
    if (!is_word || (!rest.empty() && std::isalnum(static_cast<unsigned char>(rest[0])) != 0)) {
        return "";
    }
    const bool is_apart = rest.empty() || rest[0] == ' ' || rest[0] == '\t';
    return std::string(kSignature) + (is_apart ? "" : " ") + std::string(rest);
}

// A timing line as the first or second line of the first block.
bool BeginsWithCue(const std::vector<Line>& lines, std::size_t first) {
    return ReadTiming(lines[first].text).has_value() ||
           (first + 1 < lines.size() && ReadTiming(lines[first + 1].text).has_value());
}

// Lines above a signature that hold nothing to be seen.
std::size_t SkipBlankLines(const std::vector<Line>& lines) {
    std::size_t first = 0;
    while (first < lines.size() && LooksBlank(lines[first].text)) {
        ++first;
    }
    return first;
}

}  // namespace

void FixMarks(const Workshop& shop) {
    std::vector<Line>& lines = shop.document.lines();
    if (lines.empty() || lines[0].frozen) {
        return;
    }
    std::string_view rest = lines[0].text;
    std::size_t marks = 0;
    for (; rest.substr(0, kMark.size()) == kMark; ++marks) {
        rest.remove_prefix(kMark.size());
    }
    const char* const code = marks > 1 ? "two-marks" : "byte-order-mark";
    if (marks > 0 && shop.Wants(code)) {
        shop.document.Record(1, code, Instead(lines[0].text.substr(0, marks * kMark.size()), ""));
        shop.document.Replace(0, std::string(rest), {});
    }
}

void FixFirstLine(const Workshop& shop) {
    Document& document = shop.document;
    std::vector<Line>& lines = document.lines();
    const std::size_t first = SkipBlankLines(lines);
    if (first == lines.size() || lines[first].frozen || IsSignature(lines[0].text)) {
        return;
    }
    const std::string_view text = lines[first].text;
    const Looks looks(text);
    const std::size_t begin =
        looks.Begin(std::min(looks.text().find_first_not_of(' '), looks.text().size()));
    const std::string straight = Straightened(text.substr(begin));
    if (!straight.empty()) {
        const bool is_late = first > 0 || begin > 0;
        const char* const code = is_late ? "late-signature" : "signature";
        if (shop.Wants(code)) {
            document.Record(lines[first].number, code, Instead(text, straight));
            for (std::size_t index = 0; index < first; ++index) {
                document.Remove(index);
            }
            document.Replace(first, straight, {});
            document.Commit();
        }
    } else if (BeginsWithCue(lines, first)) {
        const char* const code = "subrip";
        if (shop.Wants(code)) {
            document.Record(1, code, Instead("", kSignature));
            document.InsertAbove(0, std::string(kSignature));
            if (first == 0) {
                document.InsertAbove(0);
            }
            document.Commit();
        }
    }
}

}  // namespace quill::fix
