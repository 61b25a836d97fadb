// Where blocks begin and end: blank lines that are missing, that should not be, or only look blank.
#include "tools/fix/blocks.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/check/characters.h"
#include "tools/check/loss_reason.h"
#include "tools/check/meant_map.h"
#include "tools/check/meant_timing.h"
#include "tools/check/surroundings.h"
#include "tools/console/text.h"
#include "tools/fix/fixer.h"

namespace quill::fix {
namespace {

// Lines between blocks that hold what nobody sees. Below a timing line such a line may be meant:
// it is all the text that the cue has.
void BlankLinesThatLookIt(const Workshop& shop) {
    Document& document = shop.document;
    std::vector<Line>& lines = document.lines();
    for (std::size_t begin = 1; begin < lines.size();) {
        std::size_t end = begin;
        while (end < lines.size() && IsEmptyToTheEye(lines[end])) {
            ++end;
        }
        const bool between = end > begin && !lines[begin - 1].timing &&
                             (end == lines.size() || BlockBeginsAt(lines, end));
        for (std::size_t index = begin; between && index < end; ++index) {
            Line& line = lines[index];
            if (!line.text.empty() && !line.frozen && shop.Wants("looks-blank")) {
                document.Record(line.number, "looks-blank", line.text, "");
                document.Replace(index, "", {});
            }
        }
        begin = std::max(end, begin + 1);
    }
    document.Commit();
}

// A cue that is taken for header lines.
void FixTimesInHeader(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    const std::size_t end = document.HeaderEnd();
    std::size_t timing = 1;
    while (timing < end && !lines[timing].timing) {
        ++timing;
    }
    if (timing >= end || !shop.Wants("times-in-header")) {
        return;
    }
    const std::size_t begin = timing > 1 && IsNumber(lines[timing - 1].text) ? timing - 1 : timing;
    if (lines[begin].frozen || lines[timing].frozen) {
        return;
    }
    document.Record(lines[begin].number, "times-in-header", "a blank line put above it");
    document.InsertAbove(begin);
    document.Commit();
}

// The number that a cue's identifier is, if it is one; 0 for any other.
std::uint64_t NumberOf(std::string_view identifier) {
    constexpr std::size_t kMostDigits = 9;
    return IsNumber(identifier) && identifier.size() <= kMostDigits
               ? std::stoull(std::string(identifier))
               : 0;
}

// An identifier with an arrow is taken for the timing line.
void FixIdentifiers(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    for (Range block = NextBlock(lines, document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        const Line& line = lines[block.begin];
        if (!line.timing && block.size() > 1 && lines[block.begin + 1].timing && !line.frozen &&
            check::HasArrow(line.text) && shop.Wants("identifier-arrow")) {
            const std::string text = WithoutArrows(line.text);
            document.Record(line.number, "identifier-arrow", line.text, text);
            document.Replace(block.begin, text, {});
        }
    }
}

// A timing line below the second line of a block gives no cue. A number above it goes with it.
void FixLateTimes(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    for (Range block = NextBlock(lines, document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        std::size_t timing = std::min(block.begin + 2, block.end);
        while (timing < block.end && !lines[timing].timing) {
            ++timing;
        }
        if (TimingOf(lines, block) < block.end || timing == block.end) {
            continue;
        }
        const std::size_t begin = timing - (IsNumber(lines[timing - 1].text) ? 1 : 0);
        if (!lines[begin].frozen && !lines[timing].frozen && shop.Wants("late-times")) {
            document.Record(lines[timing].number, "late-times", "a blank line put above it");
            document.InsertAbove(begin);
        }
    }
    document.Commit();
}

// Timing lines that are shown as text, because no blank line stands above them. The line above one
// goes with it when it is the next number behind the identifier of the cue before. The same timing
// line once more is not needed.
void SplitCues(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    std::uint64_t last = 0;
    for (Range block = NextBlock(lines, document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        std::size_t timing = TimingOf(lines, block);
        if (timing == block.end) {
            continue;
        }
        last = timing > block.begin ? NumberOf(lines[block.begin].text) : last + 1;
        for (std::size_t index = timing + 1; index < block.end; ++index) {
            if (!lines[index].timing) {
                continue;
            }
            const bool has_number =
                index > timing + 2 && last > 0 && NumberOf(lines[index - 1].text) == last + 1;
            const std::size_t begin = index - (has_number ? 1 : 0);
            const bool is_twice = index == timing + 1;
            if (lines[begin].frozen || lines[index].frozen || !shop.Wants("times-in-text") ||
                (is_twice && lines[index].text != lines[timing].text)) {
                continue;
            }
            ++last;
            timing = index;
            if (is_twice) {
                document.Record(lines[index].number, "times-in-text", lines[index].text, "");
                document.Drop(index);
            } else {
                document.Record(lines[begin].number, "times-in-text", "a blank line put above it");
                document.InsertAbove(begin);
            }
        }
    }
    document.Commit();
}

// Text that a blank line has cut off from the timing line above it.
void JoinTexts(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    Range block = NextBlock(lines, document.HeaderEnd());
    while (block.size() > 0) {
        const Range next = NextBlock(lines, block.end);
        const bool no_text = TimingOf(lines, block) + 1 == block.end;
        const bool is_text = next.size() > 0 && !BlockBeginsAt(lines, next.begin) &&
                             TimingOf(lines, next) == next.end &&
                             !check::IsLikeMap(lines[next.begin].text) &&
                             !(next.size() == 1 && IsNumber(lines[next.begin].text));
        const bool free = std::none_of(lines.begin() + static_cast<std::ptrdiff_t>(block.begin),
                                       lines.begin() + static_cast<std::ptrdiff_t>(next.end),
                                       [](const Line& line) { return line.frozen; });
        if (no_text && is_text && free && block.size() + next.size() <= kMostLines &&
            shop.Wants("no-text")) {
            document.Record(lines[block.end].number, "no-text",
                            "the blank line above the text removed");
            for (std::size_t index = block.end; index < next.begin; ++index) {
                document.Remove(index);
            }
        }
        block = next;
    }
    document.Commit();
}

// An identifier that a blank line has cut off from its cue. Only one that is a number is sure to be
// one.
void JoinIdentifiers(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    Range block = NextBlock(lines, document.HeaderEnd());
    while (block.size() > 0) {
        const Range next = NextBlock(lines, block.end);
        if (block.size() == 1 && IsNumber(lines[block.begin].text) && next.size() > 0 &&
            lines[next.begin].timing && next.size() < kMostLines && !lines[block.begin].frozen &&
            !lines[next.begin].frozen && shop.Wants("lone-line")) {
            document.Record(lines[block.begin].number, "lone-line",
                            "the blank line below it removed");
            for (std::size_t index = block.end; index < next.begin; ++index) {
                document.Remove(index);
            }
        }
        block = next;
    }
    document.Commit();
}

}  // namespace

std::string WithoutArrows(std::string_view line) {
    std::string text(line);
    for (std::size_t arrow = text.find("-->"); arrow != std::string::npos;
         arrow = text.find("-->")) {
        text.erase(arrow, 1);
    }
    return text;
}

bool BlockBeginsAt(const std::vector<Line>& lines, std::size_t index) {
    return lines[index].timing || check::IsCommentLine(lines[index].text) ||
           check::IsStyleLine(lines[index].text) ||
           (index + 1 < lines.size() && lines[index + 1].timing);
}

bool IsNumber(std::string_view line) {
    return !line.empty() && line.find_first_not_of("0123456789") == std::string_view::npos;
}

void DropBlock(Document& document, const Range& block) {
    for (std::size_t index = block.begin; index < block.end; ++index) {
        document.Drop(index);
    }
    if (block.end < document.lines().size() && document.lines()[block.end].text.empty()) {
        document.Remove(block.end);
    }
}

bool IsEmptyToTheEye(const Line& line) {
    return line.IsBlank() || check::LooksBlank(line.text);
}

void FixBlankLines(const Workshop& shop) {
    BlankLinesThatLookIt(shop);
    FixTimesInHeader(shop);
    FixIdentifiers(shop);
    FixLateTimes(shop);
    SplitCues(shop);
    JoinTexts(shop);
    JoinIdentifiers(shop);
}

}  // namespace quill::fix
