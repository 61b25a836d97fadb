#include "tools/fix/overrides.h"

#include <algorithm>
#include <string>

#include "tools/console/text.h"

namespace quill::fix {
namespace {

constexpr char kCode[] = "foreign-code";

// "{\an8}": the digits say where, as on a keypad.
constexpr std::string_view kAtTop = "an8";
constexpr std::string_view kAtBottom = "an2";

// "i1" begins what "i0" ends.
bool IsStyle(std::string_view tag) {
    return tag.size() == 2 && std::string_view("ibu").find(tag[0]) != std::string_view::npos &&
           (tag[1] == '0' || tag[1] == '1');
}

// The tag of a track for it; an end without a beginning is none.
std::string StyleTag(std::string_view text, std::size_t at, std::string_view tag) {
    const std::string name(tag.substr(0, 1));
    if (tag[1] == '1') {
        return "<" + name + ">";
    }
    const std::size_t begin = text.substr(0, at).rfind("\\" + name + "1");
    const std::size_t end = text.substr(0, at).rfind("\\" + name + "0");
    const bool is_open =
        begin != std::string_view::npos && (end == std::string_view::npos || end < begin);
    return is_open ? "</" + name + ">" : "";
}

// The codes between two braces.
std::optional<Change> FixBraces(std::string_view text, std::size_t at) {
    const std::size_t end = text.find_first_of("}\n", at);
    if (end == std::string_view::npos || text[end] != '}') {
        return std::nullopt;
    }
    Change change{end + 1 - at, "", "", kCode};
    for (std::size_t begin = at + 2; begin <= end;) {
        const std::size_t next = std::min(text.find('\\', begin), end);
        const std::string_view tag = text.substr(begin, next - begin);
        if (IsStyle(tag)) {
            change.replacement += StyleTag(text, begin - 1, tag);
        } else if (tag == kAtTop) {
            change.at_top = true;
        } else if (tag != kAtBottom) {
            return std::nullopt;
        }
        begin = next + 1;
    }
    return change;
}

// Whether every backslash of the text belongs to a code: else it may be the name of a file, or a
// piece of a program.
bool HasCodesOnly(std::string_view text) {
    for (std::size_t at = text.find('\\'); at != std::string_view::npos;
         at = text.find('\\', at + 1)) {
        const char before = at > 0 ? text[at - 1] : '\n';
        const char behind = at + 1 < text.size() ? text[at + 1] : '\n';
        const bool is_break = (behind == 'N' || behind == 'h') && before != ':';
        const std::size_t brace = text.substr(0, at).find_last_of("{}\n");
        const bool is_in_braces = brace != std::string_view::npos && text[brace] == '{';
        if (!is_break && !is_in_braces) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<Change> FixOverride(std::string_view text, std::size_t at) {
    if (text[at] == '{') {
        return FixBraces(text, at);
    }
    const std::string_view code = text.substr(at, 2);
    if ((code != "\\N" && code != "\\h") || !HasCodesOnly(text)) {
        return std::nullopt;
    }
    return code == "\\N" ? Change{2, "\n", "\n", kCode} : Change{2, "&nbsp;", "\u00A0", kCode};
}

}  // namespace quill::fix
