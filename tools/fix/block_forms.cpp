// What becomes of blocks: those that make no cue, those that are too long, and the last one.
#include <algorithm>
#include <optional>
#include <string>

#include "tools/check/loss_reason.h"
#include "tools/check/meant_timing.h"
#include "tools/check/surroundings.h"
#include "tools/console/text.h"
#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"

namespace quill::fix {
namespace {

bool HoldsTimes(std::string_view line) {
    const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(line);
    return meant && meant->is_certain;
}

// A tag that goes on in the next line, where a cue can't be cut.
bool IsOpen(std::string_view line) {
    const std::size_t bracket = line.rfind('<');
    return bracket != std::string_view::npos && line.find('>', bracket) == std::string_view::npos;
}

// "<!-- as pages have them -->", which costs the cues behind it.
bool IsPageComment(std::string_view line) {
    const std::size_t arrow = line.find(check::kArrow);
    return console::BeginsWith(line, "<!-- ") && arrow > 4 && arrow != std::string_view::npos &&
           line.find_first_not_of(" \t", arrow + check::kArrow.size()) == std::string_view::npos;
}

// Whether words stand behind the times, which may be the cue's text.
bool HasTextOnTimingLine(std::string_view line) {
    const std::optional<check::MeantTiming> timing = check::ReadMeantTiming(line);
    return timing && !check::TextAmongSettings(line.substr(timing->settings_begin), 1).empty();
}

// What stands in the header, where it is taken for a stray text elsewhere.
bool IsRegion(std::string_view line) {
    return console::BeginsWith(line, "Region:");
}

// "#EXT-X-DISCONTINUITY"
bool IsOfPlaylist(std::string_view line) {
    return console::BeginsWith(line, "#EXT");
}

// Regions go to the header, and what belongs to a playlist goes away.
void PutAway(const Workshop& shop, const Range& block) {
    Document& document = shop.document;
    const auto all_are = [&](bool (*is)(std::string_view)) {
        return std::all_of(document.lines().begin() + static_cast<std::ptrdiff_t>(block.begin),
                           document.lines().begin() + static_cast<std::ptrdiff_t>(block.end),
                           [is](const Line& line) { return !line.frozen && is(line.text); });
    };
    const bool are_regions = all_are(IsRegion);
    const char* const code = block.size() == 1 ? "lone-line" : "no-times";
    if ((!are_regions && !all_are(IsOfPlaylist)) || !shop.Wants(code)) {
        return;
    }
    for (std::size_t index = block.begin; index < block.end; ++index) {
        const Line& line = document.lines()[index];
        if (are_regions) {
            document.Record(line.number, code, "put below the first line");
            document.InsertAbove(1, std::string(line.text));
        } else {
            document.Record(line.number, code, line.text, "");
        }
    }
    DropBlock(document, block);
}

}  // namespace

// A cue without a text costs those behind it, and shows nothing either way: it becomes a comment,
// in which nothing of it is lost. The first line of a track that was put behind another one, and
// nothing else of it, is not needed.
void FixEmptyBlocks(const Workshop& shop) {
    Document& document = shop.document;
    std::vector<Line>& lines = document.lines();
    Range block = NextBlock(lines, document.HeaderEnd());
    while (block.size() > 0) {
        const Range next = NextBlock(lines, block.end);
        const Line& first = lines[block.begin];
        const bool is_free = !first.frozen && !lines[block.end - 1].frozen;
        const bool is_last = next.size() == 0 || BlockBeginsAt(lines, next.begin);
        if (is_free && is_last && TimingOf(lines, block) + 1 == block.end &&
            !HasTextOnTimingLine(lines[block.end - 1].text) && shop.Wants("no-text")) {
            for (std::size_t index = block.begin; index < block.end; ++index) {
                const std::string text =
                    (index == block.begin ? "NOTE " : "") + WithoutArrows(lines[index].text);
                document.Record(lines[index].number, "no-text", lines[index].text, text);
                document.Replace(index, text, {});
                lines[index].timing = false;
            }
        } else if (is_free && block.size() == 1 && IsPageComment(first.text) &&
                   shop.Wants("page-comment")) {
            const std::string text =
                "NOTE" + std::string(first.text.substr(4, first.text.rfind(check::kArrow) - 4));
            document.Record(first.number, "page-comment", first.text, text);
            document.Replace(block.begin, text, {});
        } else if (is_free && block.size() == 1 && check::IsSignature(first.text) &&
                   shop.Wants("second-track")) {
            document.Record(first.number, "second-track", first.text, "");
            document.Drop(block.begin);
        } else if (is_free) {
            PutAway(shop, block);
        }
        block = next;
    }
    document.Commit();
}

// What stands behind the tenth line becomes a cue of its own with the same times and settings.
void FixLongBlocks(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    for (Range block = NextBlock(lines, document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        const std::size_t timing = TimingOf(lines, block);
        const bool free =
            std::none_of(lines.begin() + static_cast<std::ptrdiff_t>(block.begin),
                         lines.begin() + static_cast<std::ptrdiff_t>(block.end),
                         [](const Line& line) { return line.frozen || IsOpen(line.text); });
        if (timing == block.end || block.size() <= kMostLines || !free ||
            !shop.Wants("eleventh-line")) {
            continue;
        }
        const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(lines[timing].text);
        Note note;
        note.start = meant->start.milliseconds;
        note.end = meant->end.milliseconds;
        note.kept_settings = std::string(lines[timing].text.substr(meant->settings_begin));
        for (std::size_t index = block.begin + kMostLines; index < block.end;
             index += kMostLines - 1) {
            document.Record(lines[index].number, "eleventh-line",
                            "a blank line and the timing line put above it");
            document.InsertAbove(index);
            document.InsertAbove(index, std::string(lines[timing].text), note);
        }
    }
    document.Commit();
}

// An arrow makes a timing line of a comment's first or second line. One that can be read as a
// timing line may be meant for one.
void FixComments(const Workshop& shop) {
    Document& document = shop.document;
    std::vector<Line>& lines = document.lines();
    for (Range block = NextBlock(lines, document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        const auto begin = lines.begin() + static_cast<std::ptrdiff_t>(block.begin);
        const auto end = lines.begin() + static_cast<std::ptrdiff_t>(block.end);
        if (!check::IsCommentLine(begin->text) || !shop.Wants("comment-arrow") ||
            std::any_of(begin, end,
                        [](const Line& line) { return line.frozen || HoldsTimes(line.text); })) {
            continue;
        }
        for (std::size_t index = block.begin; index < block.end; ++index) {
            const std::string text = WithoutArrows(lines[index].text);
            if (text != lines[index].text) {
                document.Record(lines[index].number, "comment-arrow", lines[index].text, text);
                document.Replace(index, text, {});
            }
        }
    }
}

// The last cue is complete only when a blank line follows it.
void FixLastLine(const Workshop& shop) {
    std::vector<Line>& lines = shop.document.lines();
    if (lines.empty() || lines.back().IsBlank() || lines.back().frozen ||
        !shop.Wants("last-blank-line")) {
        return;
    }
    std::size_t begin = lines.size();
    while (begin > 0 && !lines[begin - 1].IsBlank()) {
        --begin;
    }
    const Range block{begin, lines.size()};
    const std::size_t timing = TimingOf(lines, block);
    // In the header nothing waits for its end.
    if (begin == 0 || timing + 1 >= lines.size()) {
        return;
    }
    Line& last = lines.back();
    shop.document.Record(last.number, "last-blank-line", "a blank line put below it");
    if (last.end.empty()) {
        last.end = lines[lines.size() - 2].end;
    }
    Line blank{"", "", last.end, last.number};
    blank.inserted = true;
    lines.push_back(blank);
}

}  // namespace quill::fix
