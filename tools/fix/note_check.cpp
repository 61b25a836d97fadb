#include "tools/fix/note_check.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "quillcaption/quillcaption.h"
#include "tools/check/characters.h"
#include "tools/check/meant_timing.h"

namespace quill::fix {
namespace {

bool IsAt(double delivered, std::int64_t milliseconds) {
    return std::abs(static_cast<double>(milliseconds) / 1000 - delivered) < kRounding;
}

// The time as stated or, when nothing is stated, the very text that it was.
bool HasTime(double delivered, const std::optional<std::int64_t>& stated, std::string_view now,
             std::string_view before, Oracle& oracle) {
    if (stated) {
        return IsAt(delivered, *stated);
    }
    const std::optional<double> expected = oracle.Time(before);
    return now == before && expected && std::abs(*expected - delivered) < kRounding;
}

// Nothing when no times are read on the line.
std::optional<check::MeantTiming> ReadTiming(std::string_view line) {
    std::optional<check::MeantTiming> meant = check::ReadMeantTiming(line);
    return meant && !meant->text.empty() ? meant : std::nullopt;
}

// `read` is the line as it was read, if there are times on it.
bool HasTimes(const Line& line, const std::optional<check::MeantTiming>& read, const Note& note,
              const check::CueCopy& cue, Oracle& oracle) {
    if (note.start && note.end) {
        return IsAt(cue.start, *note.start) && IsAt(cue.end, *note.end);
    }
    const std::optional<check::MeantTiming> now = ReadTiming(line.text);
    return now && read &&
           HasTime(cue.start, note.start, now->start_place.In(line.text),
                   read->start_place.In(line.original), oracle) &&
           HasTime(cue.end, note.end, now->end_place.In(line.text),
                   read->end_place.In(line.original), oracle);
}

// The alignment decides the position, unless a setting does.
void Align(check::CueCopy& cue, int align, const std::string& kept, Oracle& oracle) {
    const auto left = oracle.Settings(kept + " align:start");
    const auto right = oracle.Settings(kept + " align:end");
    cue.align = align;
    if (left && right && left->position != right->position) {
        cue.position = align == WEBVTT_TEXT_ALIGN_MIDDLE                                    ? 50
                       : align == WEBVTT_TEXT_ALIGN_END || align == WEBVTT_TEXT_ALIGN_RIGHT ? 100
                                                                                            : 0;
    }
}

void Apply(check::CueCopy& cue, const Effect& effect) {
    switch (effect.field) {
        case Effect::Field::kAlign:
            break;  // was the first
        case Effect::Field::kVertical:
            cue.vertical = effect.value;
            break;
        case Effect::Field::kSize:
            cue.size = effect.value;
            break;
        case Effect::Field::kPosition:
            cue.position = effect.value;
            break;
        case Effect::Field::kLine:
        case Effect::Field::kLinePercent:
            cue.line = effect.value;
            cue.snap_to_lines = effect.field == Effect::Field::kLine;
            break;
    }
}

// What the settings that were kept come to, with the stated effects of the others.
bool HasSettings(const Line& line, const std::optional<check::MeantTiming>& read, const Note& note,
                 const check::CueCopy& cue, Oracle& oracle) {
    const std::string kept = note.kept_settings ? *note.kept_settings
                             : read ? std::string(line.original.substr(read->settings_begin))
                                    : "";
    std::optional<check::CueCopy> expected = oracle.Settings(kept);
    if (!expected) {
        return false;
    }
    for (const Effect& effect : note.effects) {
        if (effect.field == Effect::Field::kAlign) {
            Align(*expected, effect.value, kept, oracle);
        }
    }
    for (const Effect& effect : note.effects) {
        Apply(*expected, effect);
    }
    return check::SameSettings(*expected, cue);
}

// A control character that stands nowhere in the text; 0 when there is none.
char FreeMark(const std::string& text) {
    for (char mark = 1; mark < ' '; ++mark) {
        if (mark != '\t' && mark != '\n' && mark != '\r' && mark != '\f' &&
            text.find(mark) == std::string::npos) {
            return mark;
        }
    }
    return '\0';
}

// The line as it was, with `mark`, or else the replacement, for every span.
std::string WithSpans(const Line& line, const Note& note, const char* mark) {
    std::string text;
    std::size_t reached = 0;
    for (const Span& span : note.spans) {
        text += line.original.substr(reached, span.begin - reached);
        text += mark != nullptr ? mark : span.replacement;
        reached = span.begin + span.size;
    }
    return text + std::string(line.original.substr(reached));
}

// Has the module read the text with a mark for everything that was replaced, and puts what is
// stated to be shown there in the place of the marks.
bool HasText(const Document& outcome, std::size_t begin, std::size_t end, const std::string& shown,
             Oracle& oracle) {
    std::string text;
    std::vector<const Span*> spans;
    for (std::size_t index = begin; index < end; ++index) {
        text += outcome.lines()[index].original;
    }
    const char mark[] = {FreeMark(text), '\0'};
    text.clear();
    for (std::size_t index = begin; index < end; ++index) {
        const Line& line = outcome.lines()[index];
        if (line.note < 0) {
            text += std::string(line.text) + "\n";
            continue;
        }
        if (line.continues) {
            continue;  // was looked at with the line that it is a part of
        }
        const Note& note = outcome.note(line);
        std::string whole(line.text);
        for (std::size_t next = index + 1; next < end && outcome.lines()[next].continues; ++next) {
            whole.append("\n").append(outcome.lines()[next].text);
        }
        if (mark[0] == '\0' || WithSpans(line, note, nullptr) != whole) {
            return false;
        }
        text += WithSpans(line, note, mark) + "\n";
        for (const Span& span : note.spans) {
            spans.push_back(&span);
        }
    }
    const std::optional<std::string> marked = oracle.Shown(text);
    std::string expected;
    std::size_t next = 0;
    for (const char c : marked.value_or("")) {
        if (c != mark[0] || next == spans.size()) {
            expected += c;
        } else {
            expected += spans[next++]->shown;
        }
    }
    return marked && next == spans.size() && expected == shown;
}

}  // namespace

bool MayGo(const Document& outcome, const Line& gone) {
    if (gone.original.empty() || check::LooksBlank(gone.original)) {
        return true;
    }
    if (gone.note < 0) {
        return false;
    }
    const Note& note = outcome.note(gone);
    return WithSpans(gone, note, nullptr).empty() &&
           std::all_of(note.spans.begin(), note.spans.end(),
                       [](const Span& span) { return span.shown.empty(); });
}

std::optional<std::string> CheckNotes(const Document& outcome, const Range& block,
                                      const check::CueCopy& cue, Oracle& oracle) {
    const std::vector<Line>& lines = outcome.lines();
    const bool is_as_read = std::all_of(lines.begin() + static_cast<std::ptrdiff_t>(block.begin),
                                        lines.begin() + static_cast<std::ptrdiff_t>(block.end),
                                        [](const Line& line) { return line.note < 0; });
    if (is_as_read) {
        return std::nullopt;
    }
    const std::size_t timing = TimingOf(lines, block);
    if (timing == block.end) {
        return "a block that is no cue would become one";
    }
    if (lines[timing].note >= 0) {
        const Note& note = outcome.note(lines[timing]);
        std::optional<check::MeantTiming> read;
        if (!note.start || !note.end || !note.kept_settings) {
            read = ReadTiming(lines[timing].original);
        }
        if (!HasTimes(lines[timing], read, note, cue, oracle)) {
            return "the times would come otherwise";
        }
        if (!HasSettings(lines[timing], read, note, cue, oracle)) {
            return "the settings would come otherwise";
        }
    }
    for (std::size_t index = timing + 1; index < block.end; ++index) {
        if (lines[index].note >= 0) {
            const bool holds = HasText(outcome, timing + 1, block.end, cue.text, oracle);
            return holds ? std::nullopt
                         : std::optional<std::string>("the text would come otherwise");
        }
    }
    return std::nullopt;
}

}  // namespace quill::fix
