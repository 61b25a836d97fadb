#include "tools/check/header_check.h"

#include <cmath>

#include "tools/check/characters.h"
#include "tools/check/loss_reason.h"
#include "tools/check/meant_map.h"
#include "tools/check/meant_timing.h"
#include "tools/check/module_words.h"
#include "tools/check/play.h"
#include "tools/console/cue_time.h"
#include "tools/console/text.h"
#include "tools/host/track_reader.h"

namespace quill::check {
namespace {

constexpr std::string_view kBeginning = "WEBVTT\n";
constexpr std::string_view kRegion = "Region:";

// With a line feed for whatever ends it, so that no carriage return is still open behind it.
std::string Complete(const Line& line) {
    return std::string(line.all) + "\n";
}

}  // namespace

HeaderCheck::HeaderCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                         std::string_view track, const ChunkPlan& plan)
    : module_(module),
      capture_(capture),
      track_(track),
      plan_(plan),
      asked_(module, capture, "WEBVTT\n\n") {}

void HeaderCheck::Run(std::size_t begin, Findings& findings, Sums& sums) {
    LoneParser parser(module_, capture_, kBeginning);
    end_ = begin;
    ExamineSignature(findings);
    bool goes_on = true;
    while (goes_on && end_ < track_.size()) {
        const Line line = LineAt(track_, end_);
        end_ = line.end;
        ++line_;
        const Verdict& verdict = parser.Ask(Complete(line));
        const std::size_t size = line.end - line.begin;
        goes_on = verdict.fate == Fate::kInHeader || verdict.fate == Fate::kThrew;
        if (!goes_on) {
            sums.AddBytes(ByteClass::kBlank, size);
            break;
        }
        switch (Examine(line, verdict, findings)) {
            case Use::kUsed:
                ++sums.header_lines_used;
                sums.AddBytes(ByteClass::kHeaderUsed, size);
                break;
            case Use::kIgnored:
                ++sums.header_lines_ignored;
                sums.AddBytes(ByteClass::kHeaderIgnored, size);
                break;
            case Use::kLost:
                sums.AddBytes(ByteClass::kLost, size);
                break;
        }
    }
    ++line_;
}

HeaderCheck::Use HeaderCheck::Examine(const Line& line, const Verdict& verdict,
                                      Findings& findings) {
    const bool is_map = console::BeginsWith(line.text, kMapName);
    const bool is_known = is_map || console::BeginsWith(line.text, kRegion);
    if (is_known && IsLostInPieces(line, verdict)) {
        findings.emplace_back(line_, "header-in-pieces",
                              "the header line " + Quoted(line.text) + " arrives in pieces");
        return Use::kIgnored;
    }
    if (is_map) {
        return ExamineMap(line, verdict, findings);
    }
    if (is_known) {
        return Use::kUsed;
    }
    if (IsLikeMap(line.text)) {
        findings.emplace_back(line_, "map-name",
                              Quoted(line.text) + " does not begin with X-TIMESTAMP-MAP",
                              WriteMap(line.text));
        return Use::kIgnored;
    }
    ExamineTimes(line, findings);
    return behind_times_ ? Use::kLost : Use::kIgnored;
}

void HeaderCheck::ExamineSignature(Findings& findings) {
    const std::string_view text = LineAt(track_, 0).text;
    if (const std::size_t map = FindMap(text); map != std::string_view::npos) {
        const std::string meant = ReadMeantMap(text.substr(map)).text;
        const std::string fix =
            meant.empty() ? ""
                          : "put it on a line of its own below the first, " + QuotedWhole(meant);
        findings.push_back(
            Finding(1, "map-on-first-line", "a map header stands on the first line", fix)
                .At(text, map));
    }
    if (const std::size_t arrow = text.find(kArrow); arrow != std::string_view::npos) {
        findings.push_back(Finding(1, "times-on-first-line", "the first line holds a timing line")
                               .At(text, arrow));
    }
}

// A line that only looks blank is to blame for the first timing line below it.
void HeaderCheck::ExamineTimes(const Line& line, Findings& findings) {
    if (LooksBlank(line.text)) {
        looks_blank_ = line_;
        blank_characters_ = NamesIn(line.text);
    } else if (line.text.find(kArrow) != std::string_view::npos) {
        behind_times_ = true;
        if (looks_blank_ != 0) {
            findings.emplace_back(looks_blank_, "looks-blank",
                                  "the line is not blank: it holds " + blank_characters_);
            looks_blank_ = 0;
        } else {
            std::string fix = BlankLineAbove(above_, line_ - 1);
            if (!IsTimingLine(line.text, asked_)) {
                const std::string instead = WriteInstead(line.text, asked_);
                fix += instead.empty() ? "" : " and " + instead;
            }
            findings.emplace_back(line_, "times-in-header",
                                  "the timing line " + Quoted(line.text) + " is in the header",
                                  fix);
        }
    }
    above_ = line.text;
}

HeaderCheck::Use HeaderCheck::ExamineMap(const Line& line, const Verdict& verdict,
                                         Findings& findings) {
    if (map_ && ChunkOf(*map_) == ChunkOf(line) && IsSecondMap(line)) {
        findings.emplace_back(line_, "second-map", "a second map header is ignored");
        return Use::kIgnored;
    }
    map_ = line;
    if (verdict.fate == Fate::kThrew) {
        throwing_maps_.emplace(ChunkOf(line), line_);
        findings.emplace_back(line_, "map-throws", Quoted(line.text) + " made the module throw");
        return Use::kIgnored;
    }
    if (Says(verdict.printed, words::kMap)) {
        const MeantMap meant = ReadMeantMap(line.text);
        const Finding finding(line_,
                              Says(verdict.printed, words::kMapValue) ? "map-value" : "map-item",
                              "no time is mapped: " + meant.complaint, WriteMap(line.text));
        findings.push_back(meant.complaint.empty() ? finding : finding.At(line.text, meant.fault));
        return Use::kIgnored;
    }
    ExamineShift(line, findings);
    return Use::kUsed;
}

// Compares what the map says with what it does.
void HeaderCheck::ExamineShift(const Line& line, Findings& findings) {
    constexpr double kTolerance = 0.5;
    const MeantMap meant = ReadMeantMap(line.text);
    if (meant.text.empty()) {
        return;
    }
    const double shift = AskShift(Complete(line));
    if (std::fabs(shift - meant.shift) < kTolerance) {
        return;
    }
    if (meant.mpeg_time == UINT32_MAX) {
        findings.push_back(Finding(line_, "map-number",
                                   "MPEGTS:" + std::to_string(meant.mpeg_time) +
                                       " counts as none, and no time is mapped",
                                   "write " + QuotedWhole(MapWithTicks(meant, meant.mpeg_time - 1)))
                               .At(line.text, line.text.find("MPEGTS:")));
        return;
    }
    findings.emplace_back(line_, "map-number",
                          "the map shifts by " + console::FormatTime(shift, '.') + ", not by " +
                              console::FormatTime(meant.shift, '.'),
                          std::string("remove the map and ") +
                              (meant.shift < 0 ? "subtract " : "add ") +
                              console::FormatTime(std::fabs(meant.shift), '.') +
                              (meant.shift < 0 ? " from every time" : " to every time"));
}

double HeaderCheck::AskShift(const std::string& map) {
    LoneParser parser(module_, capture_, kBeginning);
    parser.Ask(map);
    return parser.Ask("\n" + std::string(kCueAtZero)).cue.start;
}

std::string HeaderCheck::WriteMap(std::string_view line) {
    const MeantMap meant = ReadMeantMap(line);
    if (meant.text.empty()) {
        return "";
    }
    LoneParser parser(module_, capture_, kBeginning);
    const Verdict& verdict = parser.Ask(meant.text + "\n");
    const bool is_taken = verdict.fate == Fate::kInHeader && !Says(verdict.printed, words::kMap);
    return is_taken ? "write " + QuotedWhole(meant.text) : "";
}

// Has the module read the map behind the one before, in one call: one that it reads makes it print
// more. What it prints comes in another order then, so only the amount is compared.
bool HeaderCheck::IsSecondMap(const Line& line) {
    LoneParser one(module_, capture_, kBeginning);
    const Verdict first = one.Ask(Complete(*map_));
    LoneParser both(module_, capture_, kBeginning);
    const Verdict& second = both.Ask(Complete(*map_) + Complete(line));
    return first.fate != Fate::kThrew && second.printed.size() == first.printed.size();
}

// Has the module read the line in the pieces that the chunks make of it. A map tells by what is
// printed whether it arrives; of a region nothing is heard, so there the number of pieces counts.
bool HeaderCheck::IsLostInPieces(const Line& line, const Verdict& verdict) {
    constexpr std::size_t kMostPieces = 2;
    const std::size_t first = plan_.IndexOf(line.begin);
    if (ChunkOf(line) - first < kMostPieces) {
        return false;
    }
    if (!console::BeginsWith(line.text, kMapName)) {
        return true;
    }
    const std::string whole = Complete(line);
    const std::string printed = verdict.printed;
    LoneParser parser(module_, capture_, kBeginning);
    std::string last;
    for (std::size_t chunk = first, at = line.begin; chunk <= ChunkOf(line); ++chunk) {
        const std::size_t end =
            chunk == ChunkOf(line) ? line.begin + whole.size() : plan_.End(chunk);
        last = parser.Ask(std::string_view(whole).substr(at - line.begin, end - at)).printed;
        at = end;
    }
    return last != printed;
}

}  // namespace quill::check
