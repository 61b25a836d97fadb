// Timing lines: their times, the arrow, and the spaces between.
#include <algorithm>
#include <string>
#include <utility>

#include "tools/check/characters.h"
#include "tools/check/meant_time.h"
#include "tools/check/meant_timing.h"
#include "tools/check/surroundings.h"
#include "tools/console/escape.h"
#include "tools/console/text.h"
#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"
#include "tools/fix/settings.h"

namespace quill::fix {
namespace {

bool IsSpaces(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

// A timing line that is written anew piece by piece. Pieces that are in order stay as they are.
class Rewriter {
  public:
    Rewriter(const Workshop& shop, const Line& line, const check::MeantTiming& meant)
        : shop_(shop), line_(line), meant_(meant) {}

    // False when something would have to change that is not wanted.
    bool Run() {
        const bool has_arrow = meant_.arrow_place.In(line_.text) == check::kArrow;
        AddSpaces(0, meant_.start_place.begin, "");
        AddTime(meant_.start_place, meant_.start, "start-time", "start-time-comma",
                made_.note.start);
        AddSpaces(meant_.start_place.end, meant_.arrow_place.begin, " ", !has_arrow);
        if (!has_arrow) {
            Record("wrong-arrow", meant_.arrow, check::kArrow);
        }
        made_.text += check::kArrow;
        AddSpaces(meant_.arrow_place.end, meant_.end_place.begin, " ", !has_arrow);
        AddTime(meant_.end_place, meant_.end, "end-time", "end-time-comma", made_.note.end);
        AddSettings();
        return is_wanted_;
    }

    Rewriting& made() { return made_; }

  private:
    std::string_view Piece(std::size_t begin, std::size_t end) const {
        return line_.text.substr(begin, end - begin);
    }

    void Record(const char* code, std::string_view before, std::string_view after) {
        made_.edits.push_back(
            {line_.number, &check::CodeNamed(code), "", std::string(before), std::string(after)});
        is_wanted_ = is_wanted_ && shop_.Wants(code);
    }

    // Spaces stay as they are; other blanks, and none where one is needed, become one.
    void AddSpaces(std::size_t begin, std::size_t end, std::string_view instead,
                   bool is_needed = false) {
        const std::string_view spaces = Piece(begin, end);
        if (IsSpaces(spaces)) {
            made_.text += spaces.empty() && is_needed ? instead : spaces;
        } else {
            made_.text += instead;
            Record(end <= meant_.arrow_place.begin ? "start-time" : "end-time", spaces, instead);
        }
    }

    void AddTime(const check::Place& place, const check::MeantTime& time, const char* code,
                 const char* comma_code, std::optional<std::int64_t>& stated) {
        const std::string_view written = place.In(line_.text);
        if (written != time.text) {
            Record(time.has_comma ? comma_code : code, written, time.text);
            stated = time.milliseconds;
        }
        made_.text += time.text;
    }

    // Without settings spaces may stand behind the end time, and nothing else.
    void AddSettings() {
        const std::size_t begin = meant_.settings_begin;
        const bool has_settings = begin < line_.text.size();
        const std::string_view spaces = Piece(meant_.end_place.end, begin);
        if (!IsSpaces(spaces) || (spaces.empty() && has_settings)) {
            Record("end-time", spaces, has_settings ? " " : "");
            made_.text += has_settings ? " " : "";
        } else {
            made_.text += spaces;
        }
        made_.note.kept_settings = line_.text.substr(begin);
        if (!has_settings) {
            return;
        }
        const SettingsFix& settings = shop_.settings.Of(line_.text.substr(begin));
        for (const SettingsFix::Change& change : settings.changes) {
            Record(change.code, change.before, change.after);
        }
        if (!settings.changes.empty()) {
            made_.note.kept_settings = settings.kept;
            made_.note.effects = settings.effects;
        }
        made_.text += settings.text;
        if (settings.text.empty()) {
            made_.text.erase(made_.text.find_last_not_of(' ') + 1);
        }
    }

    const Workshop& shop_;
    const Line& line_;
    const check::MeantTiming& meant_;
    Rewriting made_;
    bool is_wanted_ = true;
};

// Cheap for lines of text, most of which begin with other letters than what is put before times.
bool MayBeTiming(std::string_view text) {
    constexpr std::size_t kShortest = 7;  // "0:1>0:2"
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.size() < kShortest) {
        return false;
    }
    if (text[0] > ' ' && text[0] < '\x7F') {
        return console::IsDigit(text[0]) || check::TimeLabelSize(text) > 0;
    }
    const console::Character first = console::FirstCharacter(text);
    return first.is_valid && check::LookAlikeOf(first.code_point) != nullptr;
}

// Marks a line that is a timing line, or will be once it is fixed. Within a block, where a text
// may stand, it takes more to be one.
void FindTiming(const Workshop& shop, Line& line, bool may_be_text) {
    line.timing = check::IsUsualTiming(line.text);
    if (line.timing || !MayBeTiming(line.text)) {
        return;
    }
    const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(line.text);
    if (!meant || !meant->is_certain ||
        (may_be_text && !meant->has_thousandths && meant->arrow != check::kArrow)) {
        return;
    }
    Rewriter rewriter(shop, line, *meant);
    const bool is_wanted = rewriter.Run();
    const bool changes = rewriter.made().text != line.text;
    line.timing = is_wanted && !(line.frozen && changes);
    if (line.timing && changes) {
        shop.document.Plan(line, std::move(rewriter.made()));
    }
}

}  // namespace

void FindTimings(const Workshop& shop) {
    std::vector<Line>& lines = shop.document.lines();
    bool in_comment = false;
    std::size_t above = 1;  // lines of the block above this one; the first line is no timing line
    for (std::size_t index = 1; index < lines.size(); ++index, ++above) {
        Line& line = lines[index];
        if (IsEmptyToTheEye(line)) {
            in_comment = false;
            above = SIZE_MAX;
            continue;
        }
        in_comment = in_comment || (above == 0 && check::IsCommentLine(line.text));
        if (!in_comment && line.text.find('\0') == std::string_view::npos) {
            FindTiming(shop, line, above > 1);
        }
    }
}

void FixTimings(const Workshop& shop) {
    const std::vector<Line>& lines = shop.document.lines();
    for (Range block = NextBlock(lines, shop.document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        const std::size_t index = TimingOf(lines, block);
        if (index < block.end && !lines[index].frozen) {
            shop.document.Rewrite(index);
        }
    }
}

}  // namespace quill::fix
