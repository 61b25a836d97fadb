#include "tools/fix/document.h"

#include <iterator>
#include <utility>

#include "tools/check/finding.h"
#include "tools/check/track_text.h"

namespace quill::fix {

namespace {

// A line that has become empty must not make one line end of two.
void StraightenEnds(std::vector<Line>& lines) {
    for (std::size_t index = 1; index < lines.size(); ++index) {
        if (lines[index].text.empty() && lines[index].end == "\n" && lines[index - 1].end == "\r") {
            lines[index].end = lines[index - 1].end;
        }
    }
}

// The words for a text in another one's place.
std::string Instead(std::string_view before, std::string_view after) {
    if (after.empty()) {
        return check::Quoted(before) + " removed";
    }
    if (after == "\n") {
        return check::Quoted(before) + " is a line end now";
    }
    return before.empty() ? check::Quoted(after) + " put in"
                          : check::Quoted(before) + " is " + check::Quoted(after) + " now";
}

}  // namespace

std::string Edit::Words() const {
    return words.empty() ? Instead(before, after) : words;
}

bool EndsHeader(std::string_view text) {
    return text.empty() || (text[0] != '\0' && text.substr(0, 2).size() == 2 && text[1] == '\0');
}

Document::Document(std::string_view track, const std::set<std::uint32_t>& frozen) {
    std::uint32_t number = 0;
    for (std::size_t at = 0; at < track.size();) {
        const check::Line read = check::LineAt(track, at);
        const std::size_t end = at + read.all.size();
        Line line{read.all, read.all, track.substr(end, read.end - end), ++number};
        line.frozen = read.is_cut() || frozen.count(number) > 0;
        lines_.push_back(line);
        at = read.end;
    }
}

std::size_t Document::HeaderEnd() const {
    std::size_t index = 1;
    while (index < lines_.size() && !EndsHeader(lines_[index].text)) {
        ++index;
    }
    return index;
}

std::string_view Document::Keep(std::string text) {
    texts_.push_back(std::move(text));
    return texts_.back();
}

int Document::Keep(Note note) {
    notes_.push_back(std::move(note));
    return static_cast<int>(notes_.size()) - 1;
}

// What is stated of the times of a line still holds when its settings are rewritten.
void Document::Replace(std::size_t index, std::string text, Note note) {
    Line& line = lines_[index];
    if (line.note >= 0) {
        const Note& known = notes_[static_cast<std::size_t>(line.note)];
        note.start = note.start ? note.start : known.start;
        note.end = note.end ? note.end : known.end;
    }
    line.text = Keep(std::move(text));
    line.note = Keep(std::move(note));
}

void Document::Plan(Line& line, Rewriting rewriting) {
    line.plan = static_cast<int>(plans_.size());
    plans_.push_back(std::move(rewriting));
}

void Document::Rewrite(std::size_t index) {
    if (lines_[index].plan < 0) {
        return;
    }
    Rewriting& plan = plans_[static_cast<std::size_t>(lines_[index].plan)];
    edits_.insert(edits_.end(), std::make_move_iterator(plan.edits.begin()),
                  std::make_move_iterator(plan.edits.end()));
    Replace(index, std::move(plan.text), std::move(plan.note));
    lines_[index].plan = -1;
}

void Document::Drop(std::size_t index) {
    Note note;
    note.spans = {{0, lines_[index].original.size(), "", ""}};
    Replace(index, "", note);
    Remove(index);
}

void Document::InsertAbove(std::size_t index, std::string text, Note note) {
    const Line& below = lines_[index];
    Line line{Keep(std::move(text)), "", index > 0 ? lines_[index - 1].end : below.end,
              below.number};
    line.note = Keep(std::move(note));
    line.inserted = true;
    line.timing = line.text.find("-->") != std::string_view::npos;
    insertions_.push_back({index, line});
}

void Document::InsertBelow(std::size_t index, std::string text, std::string_view original) {
    Line& above = lines_[index];
    Line line{Keep(std::move(text)), original, above.end, above.number};
    line.note = Keep(Note{});
    line.inserted = true;
    line.continues = original.empty();
    if (above.end.empty() && index > 0) {
        above.end = lines_[index - 1].end;
    }
    insertions_.push_back({index + 1, line});
}

void Document::Commit() {
    if (removed_.empty() && insertions_.empty()) {
        StraightenEnds(lines_);
        return;
    }
    std::vector<Line> lines;
    lines.reserve(lines_.size() + insertions_.size());
    auto insertion = insertions_.begin();
    for (std::size_t index = 0; index <= lines_.size(); ++index) {
        for (; insertion != insertions_.end() && insertion->index == index; ++insertion) {
            lines.push_back(insertion->line);
        }
        if (index == lines_.size()) {
            break;
        }
        (removed_.count(index) == 0 ? lines : gone_).push_back(lines_[index]);
    }
    StraightenEnds(lines);
    lines_ = std::move(lines);
    removed_.clear();
    insertions_.clear();
}

void Document::Record(std::uint32_t line, const char* code, const std::string& words) {
    edits_.push_back({line, &check::CodeNamed(code), words, "", ""});
}

void Document::Record(std::uint32_t line, const char* code, std::string_view before,
                      std::string_view after) {
    edits_.push_back({line, &check::CodeNamed(code), "", std::string(before), std::string(after)});
}

std::string Document::Text() const {
    std::string text;
    for (const Line& line : lines_) {
        text += line.text;
        text += line.end;
    }
    return text;
}

Range NextBlock(const std::vector<Line>& lines, std::size_t from) {
    while (from < lines.size() && lines[from].IsBlank()) {
        ++from;
    }
    std::size_t end = from;
    while (end < lines.size() && !lines[end].IsBlank()) {
        ++end;
    }
    return {from, end};
}

std::size_t TimingOf(const std::vector<Line>& lines, const Range& block) {
    for (std::size_t index = block.begin; index < block.end && index < block.begin + 2; ++index) {
        if (lines[index].timing) {
            return index;
        }
        if (lines[index].text.find("-->") != std::string_view::npos) {
            break;
        }
    }
    return block.end;
}

}  // namespace quill::fix
