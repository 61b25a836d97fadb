#include "tools/check/header_check.h"

#include "tools/check/module_words.h"
#include "tools/host/track_reader.h"

namespace quill::check {
namespace {

constexpr std::string_view kBeginning = "WEBVTT\n";
constexpr std::string_view kMap = "X-TIMESTAMP-MAP";
constexpr std::string_view kRegion = "Region:";

bool BeginsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// With a line feed for whatever ends it, so that no carriage return is still open behind it.
std::string Complete(const Line& line) {
    return std::string(line.all) + "\n";
}

}  // namespace

HeaderCheck::HeaderCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                         std::string_view track, const ChunkPlan& plan)
    : module_(module), capture_(capture), track_(track), plan_(plan) {}

void HeaderCheck::Run(std::size_t begin, Findings& findings, Sums& sums) {
    LoneParser parser(module_, capture_, kBeginning);
    end_ = begin;
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
    const bool is_map = BeginsWith(line.text, kMap);
    const bool is_known = is_map || BeginsWith(line.text, kRegion);
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
    if (line.text.find("-->") != std::string_view::npos) {
        behind_times_ = true;
        findings.emplace_back(line_, "times-in-header",
                              "the timing line " + Quoted(line.text) + " is in the header");
    }
    return behind_times_ ? Use::kLost : Use::kIgnored;
}

HeaderCheck::Use HeaderCheck::ExamineMap(const Line& line, const Verdict& verdict,
                                         Findings& findings) {
    if (map_ && ChunkOf(*map_) == ChunkOf(line) && IsSecondMap(line)) {
        findings.emplace_back(line_, "second-map", "a second map header is ignored");
        return Use::kIgnored;
    }
    map_ = line;
    if (verdict.fate == Fate::kThrew) {
        throwing_chunks_.push_back(ChunkOf(line));
        findings.emplace_back(line_, "map-throws", Quoted(line.text) + " made the module throw");
        return Use::kIgnored;
    }
    if (Says(verdict.printed, words::kMapValue)) {
        findings.emplace_back(line_, "map-value", "invalid value in " + Quoted(line.text));
        return Use::kIgnored;
    }
    if (Says(verdict.printed, words::kMap)) {
        findings.emplace_back(line_, "map-item", "unknown item in " + Quoted(line.text));
        return Use::kIgnored;
    }
    return Use::kUsed;
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
    if (!BeginsWith(line.text, kMap)) {
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
