// Timing lines: their times, the arrow, and the spaces between.
#include <algorithm>
#include <string>

#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"
#include "tools/fix/settings.h"
#include "tools/fix/timing_reading.h"

namespace quill::fix {
namespace {

bool IsSpaces(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

// The usual times, and no settings.
bool IsInOrder(std::string_view line, const TimingReading& reading) {
    return reading.end.end == line.size() && reading.start.begin == 0 &&
           line.substr(reading.start.end, reading.end.begin - reading.start.end) == " --> " &&
           IsUsualTime(line.substr(0, reading.start.end)) &&
           IsUsualTime(line.substr(reading.end.begin));
}

// A timing line that is written anew piece by piece. Pieces that are in order stay as they are.
class Rewriting {
  public:
    Rewriting(const Workshop& shop, const Line& line, const TimingReading& reading)
        : shop_(shop), line_(line), reading_(reading) {}

    // False when something would have to change that is not wanted.
    bool Run() {
        AddSpaces(0, reading_.start.begin, "");
        AddTime(reading_.start, "start-time", "start-time-comma", note_.start);
        AddSpaces(reading_.start.end, reading_.arrow_begin, " ");
        AddArrow();
        AddSpaces(reading_.arrow_end, reading_.end.begin, " ");
        AddTime(reading_.end, "end-time", "end-time-comma", note_.end);
        AddSettings();
        return fine_;
    }

    const std::string& text() const { return text_; }

    void Apply(std::size_t index) {
        for (const Edit& edit : edits_) {
            shop_.document.Record(edit.line, edit.code->name, edit.before, edit.after);
        }
        shop_.document.Replace(index, text_, note_);
    }

  private:
    std::string_view Piece(std::size_t begin, std::size_t end) const {
        return line_.text.substr(begin, end - begin);
    }

    void Record(const char* code, std::string_view before, std::string_view after) {
        edits_.push_back(
            {line_.number, &check::CodeNamed(code), "", std::string(before), std::string(after)});
        fine_ = fine_ && shop_.Wants(code);
    }

    void AddSpaces(std::size_t begin, std::size_t end, std::string_view instead) {
        const std::string_view spaces = Piece(begin, end);
        if (IsSpaces(spaces)) {
            text_ += spaces;
        } else {
            text_ += instead;
            Record(end <= reading_.arrow_begin ? "start-time" : "end-time", spaces, instead);
        }
    }

    void AddTime(const WrittenTime& time, const char* code, const char* comma_code,
                 std::optional<std::int64_t>& stated) {
        const std::string_view written = Piece(time.begin, time.end);
        if (IsUsualTime(written) || shop_.oracle.Time(written)) {
            text_ += written;
            return;
        }
        const std::string canonical = time.Canonical();
        Record(time.has_comma ? comma_code : code, written, canonical);
        stated = time.milliseconds;
        text_ += canonical;
    }

    void AddArrow() {
        const std::string_view arrow = Piece(reading_.arrow_begin, reading_.arrow_end);
        if (arrow != "-->") {
            Record("wrong-arrow", arrow, "-->");
        }
        text_ += "-->";
    }

    // Without settings spaces may stand behind the end time, and nothing else.
    void AddSettings() {
        const std::size_t begin = reading_.settings_begin;
        const bool has_settings = begin < line_.text.size();
        const std::string_view spaces = Piece(reading_.end.end, begin);
        if (!IsSpaces(spaces) || (spaces.empty() && has_settings)) {
            Record("end-time", spaces, has_settings ? " " : "");
            text_ += has_settings ? " " : "";
        } else {
            text_ += spaces;
        }
        SettingsFix settings = FixSettings(line_.text.substr(begin), shop_.selection);
        for (const SettingsFix::Change& change : settings.changes) {
            Record(change.code, change.before, change.after);
        }
        if (!settings.changes.empty()) {
            note_.kept_settings = settings.kept;
            note_.effects = std::move(settings.effects);
        }
        text_ += settings.text;
        if (has_settings && settings.text.empty()) {
            text_.erase(text_.find_last_not_of(' ') + 1);
        }
    }

    const Workshop& shop_;
    const Line& line_;
    const TimingReading& reading_;
    std::string text_;
    Note note_;
    std::vector<Edit> edits_;
    bool fine_ = true;
};

// A timing line that is in order, or will be once it is fixed.
bool WillDo(const Workshop& shop, const Line& line) {
    const std::optional<TimingReading> reading = ReadTiming(line.text);
    if (!reading || IsInOrder(line.text, *reading)) {
        return reading.has_value();
    }
    Rewriting rewriting(shop, line, *reading);
    return rewriting.Run() && (!line.frozen || rewriting.text() == line.text);
}

}  // namespace

void FindTimings(const Workshop& shop) {
    std::vector<Line>& lines = shop.document.lines();
    bool in_comment = false;
    bool behind_blank = false;
    for (std::size_t index = 1; index < lines.size(); ++index) {
        Line& line = lines[index];
        const bool is_blank = IsEmptyToTheEye(line);
        in_comment = !is_blank && (in_comment || (behind_blank && IsComment(line.text)));
        behind_blank = is_blank;
        line.timing = !in_comment && !is_blank && line.text.find('\0') == std::string_view::npos &&
                      WillDo(shop, line);
    }
}

void FixTimings(const Workshop& shop) {
    const std::vector<Line>& lines = shop.document.lines();
    for (Range block = NextBlock(lines, shop.document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        const std::size_t index = TimingOf(lines, block);
        if (index == block.end || lines[index].frozen) {
            continue;
        }
        const std::optional<TimingReading> reading = ReadTiming(lines[index].text);
        if (IsInOrder(lines[index].text, *reading)) {
            continue;
        }
        Rewriting rewriting(shop, lines[index], *reading);
        if (rewriting.Run() && rewriting.text() != lines[index].text) {
            rewriting.Apply(index);
        }
    }
}

}  // namespace quill::fix
