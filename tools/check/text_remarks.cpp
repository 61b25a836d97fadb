#include "tools/check/text_remarks.h"

#include <algorithm>
#include <set>

#include "tools/check/module_words.h"
#include "tools/check/references.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

bool IsAsciiAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The line feed in the classes of a start tag that begins `tag`, which makes the rest of the tag
// text; 0 when there is none.
std::size_t LineEndInClasses(std::string_view tag) {
    const std::size_t dot = tag.find_first_of(". \t\f\n/");
    if (dot == std::string_view::npos || tag[dot] != '.') {
        return 0;
    }
    const std::size_t end = tag.find_first_of(" \t\f\n", dot);
    return end != std::string_view::npos && tag[end] == '\n' ? end : 0;
}

// What the module says that it has dropped: all that stands between these words and the end.
std::set<std::string_view> DroppedTags(std::string_view printed, std::string_view words) {
    std::set<std::string_view> tags;
    std::size_t at = printed.find(words);
    while (at != std::string_view::npos) {
        const std::size_t begin = at + words.size();
        const std::size_t end = std::min(printed.find(words::kTagEnd, begin), printed.size());
        tags.insert(printed.substr(begin, end - begin));
        at = printed.find(words, end);
    }
    return tags;
}

struct Dropped {
    std::set<std::string_view> end_tags;
    std::set<std::string_view> time_tags;
};

// Returns how many bytes of `rest`, which begins with "<", have been dealt with. What is found gets
// its place from TextRemarks::Examine.
std::size_t ExamineTag(std::string_view rest, const Dropped& dropped, Findings& findings) {
    const std::size_t close = rest.find('>');
    if (close == std::string_view::npos) {
        findings.emplace_back(0, "open-tag", "the tag " + Quoted(rest) + " is not closed");
        return rest.size();
    }
    const std::string_view tag = rest.substr(0, close + 1);
    const std::string_view inner = rest.substr(1, close - 1);
    if (const std::size_t line_end = LineEndInClasses(tag); line_end != 0) {
        findings.emplace_back(0, "tag-line-end", "a line ends inside the tag " + Quoted(tag));
        return line_end + 1;
    }
    if (inner.substr(0, 1) == "/" && dropped.end_tags.count(inner.substr(1)) > 0) {
        findings.emplace_back(0, "unknown-end-tag", "unknown end tag " + Quoted(tag));
    } else if (dropped.time_tags.count(inner) > 0) {
        findings.emplace_back(0, "time-tag", "invalid time tag " + Quoted(tag));
    }
    return tag.size();
}

}  // namespace

void TextRemarks::Examine(const BlockText& block, const std::string& printed, Findings& findings) {
    const Dropped dropped = {DroppedTags(printed, words::kEndTag),
                             DroppedTags(printed, words::kTimeTag)};
    const std::string payload = block.Payload();
    std::size_t at = payload.find_first_of("&<");
    while (at < payload.size()) {
        const std::string_view rest = std::string_view(payload).substr(at);
        Findings found;
        const std::size_t done =
            rest[0] == '<' ? ExamineTag(rest, dropped, found) : ExamineReference(rest, found);
        const BlockPlace place = block.PlaceInPayload(at);
        for (Finding& finding : found) {
            finding.line = block.number(place.line);
            findings.push_back(finding.At(block.text(place.line), place.byte));
        }
        at = payload.find_first_of("&<", at + done);
    }
}

std::size_t TextRemarks::ExamineReference(std::string_view rest, Findings& findings) {
    if (const std::size_t size = NumberedSize(rest)) {
        const std::string_view reference = rest.substr(0, size);
        findings.emplace_back(0, "bare-ampersand", "the \"&\" of " + Quoted(reference) + " is lost",
                              WriteNumbered(reference));
        return size;
    }
    std::size_t end = 1;
    while (end < rest.size() && IsAsciiAlphanumeric(rest[end])) {
        ++end;
    }
    if (end == rest.size() || rest[end] == '<' || rest[end] == '&') {
        return end;
    }
    const std::string name(rest.substr(1, end - 1));
    const std::string_view with_end = rest.substr(0, end + 1);
    switch (AnswerFor(std::string(with_end))) {
        case Reference::kLost:
            findings.emplace_back(0, "bare-ampersand", Quoted("&" + name) + " is lost",
                                  WriteLost(name));
            break;
        case Reference::kUnknown:
            findings.emplace_back(0, "unknown-reference", Quoted(with_end) + " is shown as it is",
                                  WriteUnknown(name));
            break;
        case Reference::kFine:
            if (name == "amp") {
                ExamineTwice(rest, findings);
            }
            break;
    }
    return end + (rest[end] == ';' ? 1 : 0);
}

// Whether "&amp;" and what is behind it were meant for one reference.
void TextRemarks::ExamineTwice(std::string_view rest, Findings& findings) {
    constexpr std::size_t kAmpersand = 5;
    const std::string behind =
        "&" + std::string(rest.substr(std::min(kAmpersand, rest.size()), 12));
    std::size_t size = NumberedSize(behind);
    std::string fix = size > 0 ? WriteNumbered(behind.substr(0, size)) : "";
    const std::size_t semicolon = behind.find(';');
    if (size == 0 && semicolon != std::string::npos && semicolon > 1) {
        size = semicolon + 1;
        const std::string name = behind.substr(1, semicolon - 1);
        const bool is_name = std::all_of(name.begin(), name.end(), IsAsciiAlphanumeric);
        const std::string character = is_name ? CharacterNamed(name) : "";
        fix = !character.empty() ? WriteCharacter(character)
              : is_name && AnswerFor(behind.substr(0, size)) == Reference::kFine
                  ? "write &" + name + ";"
                  : "";
    }
    if (!fix.empty()) {
        const std::string shown = behind.substr(0, size);
        findings.emplace_back(0, "escaped-twice",
                              Quoted("&amp;" + shown.substr(1)) + " is shown as " + Quoted(shown),
                              fix);
    }
}

std::string TextRemarks::WriteLost(const std::string& name) {
    if (!name.empty() && AnswerFor("&" + name + ";") == Reference::kFine) {
        return "add the semicolon";
    }
    const std::string character = CharacterNamed(name);
    return character.empty() ? "write &amp;" + name : WriteCharacter(character);
}

std::string TextRemarks::WriteUnknown(std::string name) {
    const std::string character = CharacterNamed(name);
    if (!character.empty()) {
        return WriteCharacter(character);
    }
    name = console::InSmallLetters(name);
    return AnswerFor("&" + name + ";") == Reference::kFine ? "write &" + name + ";"
                                                           : "write the character itself";
}

TextRemarks::Reference TextRemarks::AnswerFor(const std::string& reference) {
    const auto known = answers_.find(reference);
    if (known != answers_.end()) {
        return known->second;
    }
    const Verdict& verdict = parser_.Ask("00:00.000 --> 00:01.000\n" + reference + "x\n\n");
    Reference answer = Reference::kFine;
    if (verdict.cue.text == reference.substr(reference.size() - 1) + "x\n") {
        answer = Reference::kLost;
    } else if (verdict.cue.text == reference + "x\n") {
        answer = Reference::kUnknown;
    }
    return answers_.emplace(reference, answer).first->second;
}

}  // namespace quill::check
