#include "tools/check/line_remarks.h"

#include <algorithm>
#include <array>

#include "tools/check/characters.h"
#include "tools/check/loss_reason.h"
#include "tools/check/meant_timing.h"
#include "tools/check/surroundings.h"

namespace quill::check {
namespace {

// Whether a line can hold what is looked for here; most lines cannot.
bool IsWorthALook(std::string_view text) {
    static const std::array<bool, 256> kTable = [] {
        std::array<bool, 256> table{};
        for (const char c : std::string_view(">:\\{\t")) {
            table[static_cast<unsigned char>(c)] = true;
        }
        std::fill(table.begin() + 0x80, table.end(), true);
        return table;
    }();
    return text.substr(0, 1) == " " || text.substr(0, 4) == "NOTE" || text.substr(0, 4) == "WEBV" ||
           std::any_of(text.begin(), text.end(),
                       [](char c) { return kTable[static_cast<unsigned char>(c)]; });
}

std::string InsteadOfCode(std::string_view code) {
    return code == "\\N" || code == "\\n" ? "write a line end for it"
           : code == "\\h"                ? "write &nbsp; for it"
                                          : "";
}

// Codes of SubStation and of MicroDVD's heirs: "{\an8}", "\N".
void ExamineOverrides(std::string_view text, std::uint32_t line, Findings& findings) {
    for (std::size_t at = text.find('\\'); at != std::string_view::npos;
         at = text.find('\\', at + 1)) {
        if (at > 0 && text[at - 1] == '{') {
            const std::size_t end = std::min(text.find('}', at), text.size() - 1);
            findings.push_back(
                Finding(line, "foreign-code",
                        Quoted(text.substr(at - 1, end - at + 2)) + " is shown as text",
                        text.substr(at, end - at) == "\\an8"
                            ? "remove it, and write line:0 behind the times"
                            : "")
                    .At(text, at - 1));
        } else if (const std::string fix = InsteadOfCode(text.substr(at, 2)); !fix.empty()) {
            findings.push_back(
                Finding(line, "foreign-code", Quoted(text.substr(at, 2)) + " is shown as text", fix)
                    .At(text, at));
        }
    }
}

// Two characters of Latin-1 that are the bytes of one in UTF-8: a capital A with tilde or
// circumflex, and one that no word goes on with.
void ExamineEncoding(std::string_view text, std::uint32_t line, Findings& findings) {
    for (std::size_t at = text.find('\xC3'); at + 4 <= text.size() && at != std::string_view::npos;
         at = text.find('\xC3', at + 1)) {
        const char second = text[at + 1];
        const char fourth = text[at + 3];
        if ((second == '\x82' || second == '\x83') && text[at + 2] == '\xC2') {
            const std::string meant = {static_cast<char>(second == '\x82' ? 0xC2 : 0xC3), fourth};
            findings.push_back(
                Finding(line, "encoded-twice",
                        Quoted(text.substr(at, 4)) + " looks like UTF-8 that was encoded twice",
                        "write " + Quoted(meant) +
                            ", or save the track once more as "
                            "what it was, Latin-1")
                    .At(text, at));
            return;
        }
    }
}

}  // namespace

std::optional<std::string> LineRemarks::TimesIn(std::string_view text) {
    const bool has_arrow = text.find(kArrow) != std::string_view::npos;
    if (has_arrow && IsTimingLine(text, parser_)) {
        return "";
    }
    if (!has_arrow && (text.find(':') == std::string_view::npos ||
                       text.find_first_of(".,") == std::string_view::npos)) {
        return std::nullopt;
    }
    const std::optional<MeantTiming> meant = ReadMeantTiming(text);
    if (!meant || meant->text.empty() || !(has_arrow || meant->has_thousandths) ||
        !IsTimingLine(meant->text, parser_)) {
        return std::nullopt;
    }
    return " and write " + QuotedWhole(meant->text);
}

Finding LineRemarks::TimesInText(const BlockText& block, std::size_t index,
                                 const std::string& instead) {
    const std::string fix =
        index == block.TimingIndex() + 1
            ? "remove it, or the timing line above it"
            : BlankLineAbove(block.text(index - 1), block.number(index - 1)) + instead;
    return {block.number(index), "times-in-text", "a timing line is shown as text", fix};
}

void LineRemarks::Examine(const BlockText& block, Findings& findings) {
    std::size_t looks_blank = 0;
    for (std::size_t index = block.TimingIndex() + 1; index < block.size(); ++index) {
        const std::string_view text = block.text(index);
        const std::uint32_t line = block.number(index);
        if (!IsWorthALook(text)) {
            continue;
        }
        if (LooksBlank(text)) {
            looks_blank = index;
        } else if (const std::optional<std::string> instead = TimesIn(text)) {
            if (looks_blank != 0) {
                findings.emplace_back(
                    block.number(looks_blank), "looks-blank",
                    "the line is not blank: it holds " + NamesIn(block.text(looks_blank)));
            } else {
                findings.push_back(TimesInText(block, index, *instead));
            }
            looks_blank = 0;
        } else if (IsSignature(text)) {
            findings.emplace_back(line, "second-track", "a second track begins here");
        } else if (IsCommentLine(text)) {
            findings.emplace_back(line, "note-in-text", "a comment is shown as text");
        }
        ExamineOverrides(text, line, findings);
        ExamineEncoding(text, line, findings);
    }
}

}  // namespace quill::check
