// Line ends within a timing line, and the one that is missing behind it.
#include <algorithm>
#include <optional>
#include <string>

#include "tools/check/finding.h"
#include "tools/check/meant_time.h"
#include "tools/check/meant_timing.h"
#include "tools/check/surroundings.h"
#include "tools/console/text.h"
#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"

namespace quill::fix {
namespace {

std::string_view WithoutSpaces(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// A time as nearly all are written, and nothing else.
bool IsTime(std::string_view text) {
    const std::string_view time = WithoutSpaces(text);
    return !time.empty() && check::UsualTimeSize(time) == time.size();
}

bool EndsInArrow(std::string_view text) {
    const std::string_view rest = WithoutSpaces(text);
    return rest.size() > check::kArrow.size() &&
           rest.substr(rest.size() - check::kArrow.size()) == check::kArrow &&
           IsTime(rest.substr(0, rest.size() - check::kArrow.size()));
}

// One of the times stands on a line of its own, or both and the arrow.
void JoinTimes(const Workshop& shop, std::size_t index) {
    Document& document = shop.document;
    const Line& line = document.lines()[index];
    const Line& below = document.lines()[index + 1];
    const bool is_end = EndsInArrow(line.text) && IsTime(below.text);
    const bool is_start = IsTime(line.text) && console::BeginsWith(below.text, check::kArrow);
    const char* const code = is_end ? "end-time" : "start-time";
    if ((!is_end && !is_start) || line.frozen || below.frozen || !shop.Wants(code)) {
        return;
    }
    std::string joined = std::string(line.text) + " " + std::string(below.text);
    const bool is_alone = WithoutSpaces(below.text) == check::kArrow;
    if (is_alone) {
        const Line& last = document.lines()[std::min(index + 2, document.lines().size() - 1)];
        if (!IsTime(last.text) || last.frozen || !shop.Wants("end-time")) {
            return;
        }
        joined.append(" ").append(last.text);
    }
    const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(joined);
    if (!meant || !meant->is_certain) {
        return;
    }
    Note note;
    note.start = meant->start.milliseconds;
    note.end = meant->end.milliseconds;
    note.kept_settings = joined.substr(meant->settings_begin);
    document.Record(
        is_end ? line.number : below.number, code,
        std::string("the line end ") + (is_end ? "behind" : "before") + " the arrow removed");
    document.Replace(index, meant->text, note);
    document.Drop(index + 1);
    if (is_alone) {
        document.Record(below.number, "end-time", "the line end behind the arrow removed");
        document.Drop(index + 2);
    }
}

// The only text that a cue has stands where its settings would.
void PutTextBelow(const Workshop& shop, std::size_t index) {
    Document& document = shop.document;
    const Line& line = document.lines()[index];
    const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(line.text);
    if (!meant || !meant->is_certain || line.frozen || !shop.Wants("no-text")) {
        return;
    }
    const std::string_view text = check::TextAmongSettings(line.text.substr(meant->settings_begin));
    if (text.empty()) {
        return;
    }
    Note note;
    note.kept_settings = "";
    document.Record(line.number, "no-text",
                    check::Quoted(text) + " put on a line of its own below");
    document.InsertBelow(index, std::string(text), text);
    document.Replace(index, std::string(line.text.substr(0, meant->end_place.end)), note);
}

}  // namespace

void FixTornLines(const Workshop& shop) {
    const std::vector<Line>& lines = shop.document.lines();
    for (Range block = NextBlock(lines, 1); block.size() > 0; block = NextBlock(lines, block.end)) {
        const std::size_t last = block.end - 1;
        const std::size_t end = check::IsCommentLine(lines[block.begin].text)
                                    ? 0
                                    : std::min(block.end, block.begin + 2);
        for (std::size_t index = block.begin; index < end; ++index) {
            if (index < last) {
                JoinTimes(shop, index);
            } else if (check::HasArrow(lines[index].text)) {
                PutTextBelow(shop, index);
            }
        }
    }
    shop.document.Commit();
}

}  // namespace quill::fix
