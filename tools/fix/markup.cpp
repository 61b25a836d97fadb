#include "tools/fix/markup.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

#include "tools/check/references.h"
#include "tools/check/tag_reason.h"

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

// A reference that was written as a text once more, or more often. Only a bracket may be shown
// as a reference on purpose.
std::optional<Change> Twice(std::string_view rest) {
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

std::optional<Change> Bracket(std::string_view name) {
    return Change{1, "&lt;", "<", name.empty() ? "unnamed-tag" : "open-tag"};
}

std::optional<Change> EndTag(std::string_view inner) {
    if (IsKnownTag(inner.substr(1))) {
        return std::nullopt;
    }
    std::string name = check::TagOfTrack(std::string(inner.substr(1)));
    name.erase(std::min(name.find_last_not_of(" \t") + 1, name.size()));
    return Change{inner.size() + 2, IsKnownTag(name) ? "</" + name + ">" : "", "",
                  "unknown-end-tag"};
}

// The text of a tag stays, and of what may be no tag at all the name, too. A line break comes
// to be a line end.
std::optional<Change> StartTag(std::string_view inner, std::string_view name,
                               std::string_view behind) {
    const std::string known = check::TagOfTrack(std::string(name));
    if (IsKnownTag(known)) {
        return Change{inner.size() + 2, "<" + known + std::string(inner.substr(name.size())) + ">",
                      "", "unknown-tag"};
    }
    const std::string end = "</" + std::string(name) + ">";
    if (!IsForeignTag(known) && inner.back() != '/' && inner.find('=') == std::string_view::npos &&
        behind.find(end) == std::string_view::npos) {
        return Change{1, "&lt;", "<", "unknown-tag"};
    }
    const char* const line_end = known == "br" || known == "br/" ? "\n" : "";
    return Change{inner.size() + 2, line_end, line_end, "unknown-tag"};
}

}  // namespace

std::optional<Change> FixReference(std::string_view rest, std::size_t& done) {
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

std::optional<Change> FixTag(std::string_view rest, std::size_t& done) {
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
        return inner.find_first_not_of("0123456789:.,") == std::string_view::npos ? std::nullopt
                                                                                  : Bracket(name);
    }
    if (inner.find('\n') != std::string_view::npos) {
        return std::nullopt;
    }
    return name[0] == '/' ? EndTag(inner)
           : is_known     ? std::nullopt
                          : StartTag(inner, name, rest.substr(close));
}

}  // namespace quill::fix
