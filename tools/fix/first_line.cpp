// The first line: byte order marks, line ends, and the signature that a track begins with.
#include <algorithm>
#include <cctype>
#include <optional>

#include "tools/check/characters.h"
#include "tools/check/file_kind.h"
#include "tools/check/loss_reason.h"
#include "tools/check/meant_timing.h"
#include "tools/console/escape.h"
#include "tools/console/text.h"
#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"

namespace quill::fix {
namespace {

constexpr std::string_view kSignature = "WEBVTT";

bool IsSignature(std::string_view line) {
    return check::IsSignature(line) && !console::BeginsWith(line, console::kByteOrderMark);
}

// Whether a line goes on behind what looks like one, in other line ends than those of tracks.
bool GoesOn(std::string_view line) {
    for (const std::string_view end : {"\\n", "\\r", "\v", "\u0085", "\u2028", "\u2029"}) {
        if (line.find(end) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

// The signature as it should have been written: in capitals, with a space behind it. Nothing when
// the line is none.
std::string Straightened(std::string_view line) {
    if (const std::size_t size = check::NearlySignatureSize(line)) {
        return std::string(kSignature) + std::string(line.substr(size));
    }
    const std::string_view word = line.substr(0, kSignature.size());
    std::string_view rest = line.substr(word.size());
    const bool is_word = std::equal(
        word.begin(), word.end(), kSignature.begin(), kSignature.end(),
        [](char c, char wanted) { return std::toupper(static_cast<unsigned char>(c)) == wanted; });
    if (!is_word || GoesOn(rest) ||
        (!rest.empty() && std::isalnum(static_cast<unsigned char>(rest[0])) != 0)) {
        return "";
    }
    if (rest.empty() || rest[0] == ' ' || rest[0] == '\t') {
        return std::string(kSignature) + std::string(rest);
    }
    const std::size_t size = console::FirstCharacter(rest).size;
    rest.remove_prefix(check::LooksBlank(rest.substr(0, size)) ? size : 0);
    return std::string(kSignature) + (rest.empty() ? "" : " ") + std::string(rest);
}

bool IsTiming(std::string_view line) {
    const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(line);
    return meant && meant->is_certain;
}

// A timing line as the first or second line of the first block.
bool BeginsWithCue(const std::vector<Line>& lines, std::size_t first) {
    return IsTiming(lines[first].text) ||
           (first + 1 < lines.size() && IsTiming(lines[first + 1].text));
}

// Lines above a signature that hold nothing to be seen.
std::size_t SkipBlankLines(const std::vector<Line>& lines) {
    std::size_t first = 0;
    while (first < lines.size() && IsEmptyToTheEye(lines[first])) {
        ++first;
    }
    return first;
}

// For a line that is the first on which something is to be seen.
void StraightenSignature(const Workshop& shop, std::size_t first) {
    Document& document = shop.document;
    const Line& line = document.lines()[first];
    const check::PlainText looks(line.text);
    const std::size_t begin =
        looks.Begin(std::min(looks.text().find_first_not_of(' '), looks.text().size()));
    const std::string straight = Straightened(line.text.substr(begin));
    const char* const code = first > 0 || begin > 0 ? "late-signature" : "signature";
    if (straight.empty() || !shop.Wants(code)) {
        return;
    }
    document.Record(line.number, code, line.text, straight);
    for (std::size_t index = 0; index < first; ++index) {
        document.Remove(index);
    }
    document.Replace(first, straight, {});
    document.Commit();
}

// A whole timing line behind the signature, whose text stands below.
void FixTimesOnFirstLine(const Workshop& shop) {
    Document& document = shop.document;
    const Line& line = document.lines()[0];
    const std::string_view rest = line.text.substr(kSignature.size());
    const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(rest);
    if (!meant || !meant->is_certain || document.lines().size() < 2 ||
        IsEmptyToTheEye(document.lines()[1]) || !shop.Wants("times-on-first-line")) {
        return;
    }
    Note note;
    note.start = meant->start.milliseconds;
    note.end = meant->end.milliseconds;
    note.kept_settings = std::string(rest.substr(meant->settings_begin));
    document.Record(1, "times-on-first-line", "a blank line put above the timing line");
    document.Replace(0, std::string(kSignature), {});
    document.InsertAbove(1);
    document.InsertAbove(1, meant->text, note);
    document.Commit();
}

}  // namespace

void FixMarks(const Workshop& shop) {
    std::vector<Line>& lines = shop.document.lines();
    if (lines.empty() || lines[0].frozen) {
        return;
    }
    std::string_view rest = lines[0].text;
    std::size_t marks = 0;
    for (; console::BeginsWith(rest, console::kByteOrderMark); ++marks) {
        rest.remove_prefix(console::kByteOrderMark.size());
    }
    const char* const code = marks > 1 ? "two-marks" : "byte-order-mark";
    if (marks > 0 && shop.Wants(code)) {
        shop.document.Record(1, code,
                             lines[0].text.substr(0, marks * console::kByteOrderMark.size()), "");
        shop.document.Replace(0, std::string(rest), {});
    }
}

// CR CR LF is what becomes of CR LF when each line feed gets a carriage return once more. With
// lines that end in a carriage return alone it would have to be known which are which.
void FixReturns(const Workshop& shop) {
    std::vector<Line>& lines = shop.document.lines();
    const auto is_rest = [&lines](std::size_t index) {
        return index > 0 && index < lines.size() && lines[index].text.empty() &&
               lines[index].end == "\r\n" && lines[index - 1].end == "\r" && !lines[index].frozen &&
               !lines[index - 1].frozen;
    };
    if (!shop.Wants("two-returns")) {
        return;
    }
    for (std::size_t index = 0; index < lines.size(); ++index) {
        if (lines[index].end == "\r" && !is_rest(index + 1) && !lines[index].frozen) {
            return;
        }
    }
    for (std::size_t index = 1; index < lines.size(); ++index) {
        if (is_rest(index)) {
            lines[index - 1].end = lines[index].end;
            shop.document.Record(lines[index - 1].number, "two-returns",
                                 "a carriage return removed from its end");
            shop.document.Remove(index);
        }
    }
    shop.document.Commit();
}

bool FixFirstLine(const Workshop& shop) {
    Document& document = shop.document;
    std::vector<Line>& lines = document.lines();
    const std::size_t first = SkipBlankLines(lines);
    if (first == lines.size() || lines[first].frozen) {
        return false;
    }
    if (!IsSignature(lines[0].text)) {
        StraightenSignature(shop, first);
    }
    const bool is_none = !IsSignature(lines[0].text) && BeginsWithCue(lines, first);
    const check::Code* const code =
        is_none ? check::ExplainRejection(document.Text()).code : nullptr;
    if (is_none && shop.filter.Lets(*code)) {
        document.Record(1, code->name, "", kSignature);
        document.InsertAbove(0, std::string(kSignature));
        if (first == 0) {
            document.InsertAbove(0);
        }
        document.Commit();
    }
    if (!IsSignature(lines[0].text)) {
        return false;
    }
    FixTimesOnFirstLine(shop);
    return true;
}

}  // namespace quill::fix
