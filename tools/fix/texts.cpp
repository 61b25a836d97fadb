// The text of cues: references, tags, and the signs that begin them.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/check/meant_timing.h"
#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"
#include "tools/fix/markup.h"
#include "tools/fix/overrides.h"

namespace quill::fix {
namespace {

// Whether nothing but spaces stands in a piece of text.
bool IsEmpty(std::string_view text) {
    return text.find_first_not_of(' ') == std::string_view::npos;
}

// The lines of a cue below its timing line, as one text.
class Payload {
  public:
    // From the line behind the timing line on. Up to `breaks` lines may be put to it.
    Payload(const Workshop& shop, std::size_t begin, std::size_t end, std::size_t breaks)
        : shop_(shop), begin_(begin), end_(end), breaks_(breaks) {
        for (std::size_t index = begin; index < end; ++index) {
            starts_.push_back(text_.size());
            text_ += shop.document.lines()[index].text;
            text_ += '\n';
        }
    }

    void Fix() {
        Find();
        for (std::size_t index = begin_; index < end_; ++index) {
            FixLine(index);
        }
        if (at_top_) {
            PutAtTop();
        }
    }

  private:
    struct Placed {
        std::size_t at;
        Change change;
    };

    void Find() {
        std::size_t at = NextSign(0);
        while (at < text_.size()) {
            const std::string_view rest = std::string_view(text_).substr(at);
            std::size_t done = 1;
            std::optional<Change> change = rest[0] == '&'   ? FixReference(rest, done)
                                           : rest[0] == '<' ? FixTag(rest, done)
                                                            : FixOverride(text_, at);
            const bool changes =
                change && shop_.Wants(change->code) && !(change->at_top && HasSettings());
            if (changes) {
                KeepReferencesBefore(at);
                if (change->shown == "\n") {
                    Break(at, *change);
                }
                at_top_ = at_top_ || change->at_top;
                changes_.push_back({at, *change});
                done = change->size;
            }
            if (rest[0] == '&' && !changes) {
                if (!kept_.empty() && kept_end_ != at) {
                    kept_.clear();
                }
                kept_end_ = at + done;
                if (text_[kept_end_ - 1] == ';') {
                    kept_.clear();
                } else {
                    kept_.push_back(at);
                }
            }
            at = NextSign(at + done);
        }
    }

    // The next "&", "<", backslash, or brace before one.
    std::size_t NextSign(std::size_t at) const {
        while (at < text_.size() && text_[at] != '&' && text_[at] != '<' && text_[at] != '\\' &&
               !(text_[at] == '{' && text_[at + 1] == '\\')) {
            ++at;
        }
        return at;
    }

    // At the ends of a line there is a line end already; where no more lines fit, and where a line
    // of nothing but tags would come about, a space has to do.
    void Break(std::size_t at, Change& change) {
        const std::size_t begin = std::max(text_.rfind('\n', at) + 1, broken_);
        const std::size_t end = text_.find('\n', at);
        const std::size_t behind = at + change.size;
        const char* instead = "\n";
        if (IsEmpty(std::string_view(text_).substr(begin, at - begin)) ||
            IsEmpty(std::string_view(text_).substr(behind, end - behind))) {
            instead = "";
        } else if (breaks_ == 0 || !HasLetters(begin, at) || !HasLetters(behind, end)) {
            instead = " ";
        } else {
            --breaks_;
            broken_ = behind;
        }
        change.replacement = change.shown = instead;
    }

    // Outside of tags, and of what begins like one.
    bool HasLetters(std::size_t begin, std::size_t end) const {
        int depth = 0;
        return std::any_of(text_.begin() + static_cast<std::ptrdiff_t>(begin),
                           text_.begin() + static_cast<std::ptrdiff_t>(end), [&depth](char c) {
                               depth += c == '<' || c == '{' ? 1 : 0;
                               const bool is_text = depth == 0 && c != ' ' && c != '\\';
                               depth = c == '>' || c == '}' ? 0 : depth;
                               return is_text;
                           });
    }

    bool HasSettings() const {
        const std::string_view timing = shop_.document.lines()[begin_ - 1].text;
        const std::optional<check::MeantTiming> meant = check::ReadMeantTiming(timing);
        return !meant || meant->settings_begin < timing.size();
    }

    // Where the line of settings is still empty.
    void PutAtTop() {
        Document& document = shop_.document;
        const Line& timing = document.lines()[begin_ - 1];
        const std::string setting = "line:0";
        Note note;
        note.kept_settings = "";
        note.effects = {{Effect::Field::kLine, 0}};
        document.Record(timing.number, "foreign-code", "", setting);
        document.Replace(
            begin_ - 1, std::string(timing.text) + (timing.text.back() == ' ' ? "" : " ") + setting,
            note);
    }

    // References without an end are shown as they are only before another sign.
    void KeepReferencesBefore(std::size_t at) {
        for (const std::size_t kept : kept_) {
            if (kept_end_ == at) {
                changes_.push_back({kept, {1, "&amp;", "&", "bare-ampersand"}});
            }
        }
        kept_.clear();
    }

    // A line of nothing but tags that are gone would be a blank line.
    void FixLine(std::size_t index) {
        Document& document = shop_.document;
        const Line& line = document.lines()[index];
        const std::size_t start = starts_[index - begin_];
        Note note;
        std::string text;
        std::size_t reached = 0;
        for (; next_ < changes_.size() && changes_[next_].at < start + line.text.size(); ++next_) {
            const auto& [at, change] = changes_[next_];
            note.spans.push_back({at - start, change.size, change.replacement, change.shown});
            text += line.text.substr(reached, at - start - reached);
            text += change.replacement;
            reached = at - start + change.size;
        }
        text += line.text.substr(std::min(reached, line.text.size()));
        const bool is_last = index + 1 == end_ && !has_text_;
        if (note.spans.empty() || (text.empty() && is_last)) {
            has_text_ = true;
            return;
        }
        for (std::size_t done = next_ - note.spans.size(); done < next_; ++done) {
            const auto& [at, change] = changes_[done];
            document.Record(line.number, change.code, line.text.substr(at - start, change.size),
                            change.replacement);
        }
        has_text_ = has_text_ || !text.empty();
        if (text.empty()) {
            document.Remove(index);
        }
        const std::size_t first = std::min(text.find('\n'), text.size());
        for (std::size_t begin = first + 1; begin <= text.size();) {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            document.InsertBelow(index, text.substr(begin, end - begin), "");
            begin = end + 1;
        }
        text.resize(first);
        document.Replace(index, std::move(text), std::move(note));
    }

    const Workshop& shop_;
    std::size_t begin_;
    std::size_t end_;
    std::size_t breaks_;
    std::size_t broken_ = 0;  // where the last line that was put to it begins
    std::string text_;
    std::vector<std::size_t> starts_;
    std::vector<Placed> changes_;
    std::size_t next_ = 0;
    std::vector<std::size_t> kept_;  // references without an end, one right behind the other
    std::size_t kept_end_ = 0;
    bool has_text_ = false;  // above the line
    bool at_top_ = false;
};

bool HasMarkup(std::string_view text) {
    return text.find('<') != std::string_view::npos || text.find('&') != std::string_view::npos ||
           text.find('\\') != std::string_view::npos;
}

}  // namespace

void FixTexts(const Workshop& shop) {
    const std::vector<Line>& lines = shop.document.lines();
    for (Range block = NextBlock(lines, shop.document.HeaderEnd()); block.size() > 0;
         block = NextBlock(lines, block.end)) {
        const std::size_t timing = TimingOf(lines, block);
        bool has_markup = false;
        bool is_free = timing < block.end;
        for (std::size_t index = timing + 1; index < block.end; ++index) {
            has_markup = has_markup || HasMarkup(lines[index].text);
            is_free = is_free && !lines[index].frozen;
        }
        if (has_markup && is_free) {
            Payload(shop, timing + 1, block.end, kMostLines - std::min(block.size(), kMostLines))
                .Fix();
        }
    }
    shop.document.Commit();
}

}  // namespace quill::fix
