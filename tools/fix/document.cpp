#include "tools/fix/document.h"

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
    return before.empty() ? check::Quoted(after) + " put in"
                          : check::Quoted(before) + " is " + check::Quoted(after) + " now";
}

}  // namespace

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

void Document::Replace(std::size_t index, std::string text, Note note) {
    lines_[index].text = Keep(std::move(text));
    lines_[index].note = Keep(std::move(note));
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

void Document::Commit() {
    if (removed_.empty() && insertions_.empty()) {
        StraightenEnds(lines_);
        return;
    }
    std::vector<Line> lines;
    lines.reserve(lines_.size() + insertions_.size());
    auto insertion = insertions_.begin();
    for (std::size_t index = 0; index < lines_.size(); ++index) {
        for (; insertion != insertions_.end() && insertion->index == index; ++insertion) {
            lines.push_back(insertion->line);
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
    edits_.push_back({line, &check::CodeNamed(code), Instead(before, after), std::string(before),
                      std::string(after)});
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
