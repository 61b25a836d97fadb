// The text of cues: references, tags, and the signs that begin them.
#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/check/references.h"
#include "tools/check/tag_reason.h"
#include "tools/fix/fixer.h"

namespace quill::fix {
namespace {

constexpr std::string_view kTagEnds = " \t\f\n.>";

bool IsAlphanumeric(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 && static_cast<unsigned char>(c) < 0x80;
}

bool IsKnownTag(std::string_view name) {
    static constexpr std::array<std::string_view, 8> kTags = {"c",    "i",  "b", "u",
                                                              "ruby", "rt", "v", "lang"};
    return std::find(kTags.begin(), kTags.end(), name) != kTags.end();
}

// Tags of pages and of other formats, which nobody means to show.
bool IsForeignTag(std::string_view name) {
    static constexpr std::array<std::string_view, 22> kTags = {
        "a",   "big", "blink", "br", "br/",   "center", "code",   "del",    "div", "em",  "font",
        "img", "ins", "p",     "s",  "small", "span",   "strike", "strong", "sub", "sup", "tt"};
    return std::find(kTags.begin(), kTags.end(), name) != kTags.end();
}

// A change to the text behind some place: bytes, what they become, what a player shows for them.
struct Change {
    std::size_t size;
    std::string replacement;
    std::string shown;
    const char* code;
};

// The lines of a cue below its timing line, as one text.
class Payload {
  public:
    Payload(const Workshop& shop, std::size_t begin, std::size_t end)
        : shop_(shop), begin_(begin), end_(end) {
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
            const std::optional<Change> change =
                rest[0] == '&' ? Reference(rest, done) : Tag(rest, done);
            const bool changes = change && shop_.Wants(change->code);
            if (changes) {
                KeepReferencesBefore(at);
                changes_.push_back({at, *change});
                done = change->size;
            }
            if (rest[0] == '&' && !changes) {
                if (!kept_.empty() && kept_end_ != at) {
                    kept_.clear();
                }
                kept_.push_back(at);
                kept_end_ = at + done;
            }
            at = NextSign(at + done);
        }
    }

    // The next "&" or "<".
    std::size_t NextSign(std::size_t at) const {
        while (at < text_.size() && text_[at] != '&' && text_[at] != '<') {
            ++at;
        }
        return at;
    }

    // References without an end are shown as they are only before another sign.
    void KeepReferencesBefore(std::size_t at) {
        for (const std::size_t kept : kept_) {
            if (kept_end_ == at && text_[at - 1] != ';') {
                changes_.push_back({kept, {1, "&amp;", "&", "bare-ampersand"}});
            }
        }
        kept_.clear();
    }

    // `done` comes to be how much has been dealt with when nothing changes.
    static std::optional<Change> Reference(std::string_view rest, std::size_t& done) {
        std::size_t end = rest[1] == '#' ? 2 : 1;
        while (end < rest.size() && IsAlphanumeric(rest[end])) {
            ++end;
        }
        const bool complete = end < rest.size() && rest[end] == ';';
        const std::string_view name = rest.substr(1, end - 1);
        const std::string character = check::CharacterOf(name);
        if (complete && (character.empty() ? rest[1] != '#' : check::IsOwn(name))) {
            done = end + 1;
            return name == "amp" ? Twice(rest) : std::nullopt;
        }
        if (complete && !character.empty()) {
            const char* const code = rest[1] == '#' ? "bare-ampersand" : "unknown-reference";
            return Change{end + 1, check::InText(character), character, code};
        }
        // Before another sign the module keeps what it has read.
        if (rest[1] != '#' && end < rest.size() && (rest[end] == '&' || rest[end] == '<')) {
            done = end;
            return std::nullopt;
        }
        if (!character.empty() && !complete) {
            return Change{end, check::InText(character), character, "bare-ampersand"};
        }
        return Change{1, "&amp;", "&", "bare-ampersand"};
    }

    // A reference that was written as a text once more, or more often. Only a bracket may be shown
    // as a reference on purpose.
    static std::optional<Change> Twice(std::string_view rest) {
        constexpr std::string_view kOnceMore = "amp;";
        std::size_t begin = 1 + kOnceMore.size();
        while (rest.substr(begin, kOnceMore.size()) == kOnceMore) {
            begin += kOnceMore.size();
        }
        const std::size_t end = std::min(rest.find(';', begin), rest.size());
        const std::string character = check::CharacterOf(rest.substr(begin, end - begin));
        if (end < rest.size() && !character.empty() && character != "<" && character != ">") {
            return Change{end + 1, check::InText(character), character, "escaped-twice"};
        }
        if (begin == 1 + kOnceMore.size()) {
            return std::nullopt;
        }
        return Change{begin, "&amp;", "&", "escaped-twice"};
    }

    static std::optional<Change> Tag(std::string_view rest, std::size_t& done) {
        const std::size_t close = rest.find('>');
        const std::size_t name_end = std::min(rest.find_first_of(kTagEnds, 1), rest.size());
        const std::string_view name = rest.substr(1, name_end - 1);
        const bool is_known = IsKnownTag(name.substr(0, 1) == "/" ? name.substr(1) : name);
        if (close == std::string_view::npos) {
            // It may be that a tag was not closed, or that none was meant. As it is, it swallows
            // all that follows.
            const bool is_tag = is_known || name == "/";
            done = is_tag ? rest.size() : 1;
            return is_tag ? std::nullopt : Bracket(name);
        }
        const std::string_view inner = rest.substr(1, close - 1);
        done = close + 1;
        if (name.empty() || (!is_known && inner.find('<') != std::string_view::npos)) {
            return Bracket(name);
        }
        if (name[0] >= '0' && name[0] <= '9') {
            return inner.find_first_not_of("0123456789:.,") == std::string_view::npos
                       ? std::nullopt
                       : Bracket(name);
        }
        if (inner.find('\n') != std::string_view::npos) {
            return std::nullopt;
        }
        return name[0] == '/' ? EndTag(inner)
               : is_known     ? std::nullopt
                              : StartTag(inner, name, rest.substr(close));
    }

    static std::optional<Change> Bracket(std::string_view name) {
        return Change{1, "&lt;", "<", name.empty() ? "unnamed-tag" : "open-tag"};
    }

    static std::optional<Change> EndTag(std::string_view inner) {
        if (IsKnownTag(inner.substr(1))) {
            return std::nullopt;
        }
        std::string name = check::TagOfTrack(std::string(inner.substr(1)));
        name.erase(std::min(name.find_last_not_of(" \t") + 1, name.size()));
        return Change{inner.size() + 2, IsKnownTag(name) ? "</" + name + ">" : "", "",
                      "unknown-end-tag"};
    }

    // The text of a tag stays, and of what may be no tag at all the name, too. A line break comes
    // to be a space.
    static std::optional<Change> StartTag(std::string_view inner, std::string_view name,
                                          std::string_view behind) {
        const std::string known = check::TagOfTrack(std::string(name));
        if (IsKnownTag(known)) {
            return Change{inner.size() + 2,
                          "<" + known + std::string(inner.substr(name.size())) + ">", "",
                          "unknown-tag"};
        }
        const std::string end = "</" + std::string(name) + ">";
        if (!IsForeignTag(known) && inner.back() != '/' &&
            inner.find('=') == std::string_view::npos &&
            behind.find(end) == std::string_view::npos) {
            return Change{1, "&lt;", "<", "unknown-tag"};
        }
        const char* const space = known == "br" || known == "br/" ? " " : "";
        return Change{inner.size() + 2, space, space, "unknown-tag"};
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
        document.Replace(index, std::move(text), std::move(note));
    }

    const Workshop& shop_;
    std::size_t begin_;
    std::size_t end_;
    std::string text_;
    std::vector<std::size_t> starts_;
    std::vector<Placed> changes_;
    std::size_t next_ = 0;
    std::vector<std::size_t> kept_;  // references without an end, one right behind the other
    std::size_t kept_end_ = 0;
    bool has_text_ = false;  // above the line
};

bool HasMarkup(std::string_view text) {
    return text.find('<') != std::string_view::npos || text.find('&') != std::string_view::npos;
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
            Payload(shop, timing + 1, block.end).Fix();
        }
    }
    shop.document.Commit();
}

}  // namespace quill::fix
