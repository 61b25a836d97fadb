#include <cstddef>
#include <cstdint>

#include "tools/check/report.h"
#include "tools/console/escape.h"

namespace quill::check {
namespace {

constexpr char kPlain[] = "\x1B[0m";
constexpr char kBold[] = "\x1B[1m";

const char* ColourOf(Severity severity) {
    switch (severity) {
        case Severity::kLost:
            return "\x1B[1;31m";
        case Severity::kChanged:
            return "\x1B[1;33m";
        case Severity::kRemark:
            break;
    }
    return "\x1B[1;36m";
}

std::string Count(std::uint64_t number, const std::string& what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

// "0 cues delivered in chunks of 65536 bytes, 3 lost, 0 changed, 0 remarks: 1 Q101, 2 Q201"; what
// is lost and was no cue stands behind those: "1 other line lost, 1 track rejected".
std::string InOneLine(const Sums& sums) {
    std::string text = Count(sums.cues_delivered, "cue") + " delivered in " +
                       (sums.chunk_size != 0 ? "chunks of " + Count(sums.chunk_size, "byte")
                                             : "the chunks that were fed") +
                       ", " + std::to_string(sums.Lost(Subject::kCue)) + " lost, ";
    if (const std::uint64_t lines = sums.Lost(Subject::kLine); lines != 0) {
        text += Count(lines, "other line") + " lost, ";
    }
    if (const std::uint64_t tracks = sums.Lost(Subject::kTrack); tracks != 0) {
        text += Count(tracks, "track") + " rejected, ";
    }
    text += std::to_string(sums.Count(Severity::kChanged)) + " changed, " +
            Count(sums.Count(Severity::kRemark), "remark");
    const char* before = ": ";
    for (std::size_t index = 0; index < CodeCount(); ++index) {
        if (const std::uint64_t count = sums.codes.at(index); count != 0) {
            text += before + std::to_string(count) + " " + Codes()[index].number;
            before = ", ";
        }
    }
    return text + "\n";
}

std::string Bytes(const Sums& sums) {
    std::string text;
    for (std::size_t index = 0; index < kByteClassCount; ++index) {
        if (sums.bytes.at(index) != 0) {
            text += (text.empty() ? "" : " + ") + std::to_string(sums.bytes.at(index)) + " " +
                    ByteClassName(static_cast<ByteClass>(index));
        }
    }
    return std::to_string(sums.AllBytes()) + (text.empty() ? "" : " = ") + text;
}

// Every byte, and what is no finding.
std::string InFull(const Sums& sums) {
    return InOneLine(sums) + "  header lines: " + std::to_string(sums.header_lines_used) +
           " used, " + std::to_string(sums.header_lines_ignored) +
           " ignored; comments: " + std::to_string(sums.comments) + "\n" +
           "  bytes: " + Bytes(sums) + "\n";
}

struct Piece {
    std::size_t begin;
    std::size_t end;
};

// What stands in quotation marks from there on, with them; the text's end when there is nothing.
// Marks can stand within what is quoted, so one that closes has no letter behind it.
Piece NextQuoted(const std::string& text, std::size_t from) {
    const std::size_t begin = text.find('"', from);
    for (std::size_t at = begin; at != std::string::npos; at = text.find('"', at + 1)) {
        const bool closes = at + 1 == text.size() ||
                            std::string_view(" ,;:.").find(text[at + 1]) != std::string_view::npos;
        if (at != begin && closes) {
            return {begin, at + 1};
        }
    }
    return {text.size(), text.size()};
}

// "line 11", "lines 11 to 4711"
std::string Lines(const LineRange& range) {
    return range.first == range.last
               ? "line " + std::to_string(range.first)
               : "lines " + std::to_string(range.first) + " to " + std::to_string(range.last);
}

class TextReport : public Report {
  public:
    explicit TextReport(bool in_colour) : in_colour_(in_colour) {}

    bool Folds() const override { return true; }

    std::string Format(const std::string& track, const Fold& fold) const override {
        const Finding& finding = fold.finding;
        std::string text = Name(track) + ":" + std::to_string(finding.line) + ":";
        if (fold.kind == Fold::Kind::kFinding && finding.column != 0) {
            text += std::to_string(finding.column) + ":";
        }
        return text + " " + Coloured(finding.code->severity) + ": " + Emphasised(InWords(fold)) +
               " [" + finding.code->number + "]; " + Emphasised(Advice(fold)) + "\n";
    }

    std::string Format(const Code& code) const override {
        constexpr std::size_t kSeverityWidth = 8;
        std::string severity = SeverityName(code.severity);
        severity.resize(kSeverityWidth, ' ');
        return std::string(code.number) + " " + severity + code.name + ": " + code.cause + "; " +
               code.hint + "\n";
    }

    std::string Format(const std::string& track, const Sums& sums, bool in_full) const override {
        if (in_full) {
            return Name(track) + ": " + InFull(sums);
        }
        return sums.AllFindings() == 0 ? "" : Name(track) + ": " + InOneLine(sums);
    }

    std::string Format(const Total& total, bool in_full) const override {
        if (!in_full && total.sums.AllFindings() == 0) {
            return "";
        }
        const std::string failed =
            total.failed == 0 ? "" : ", " + std::to_string(total.failed) + " could not be checked";
        return "total: " + Count(total.tracks, "track") + ", " +
               std::to_string(total.with_findings) + " with findings" + failed + ": " +
               (in_full ? InFull(total.sums) : InOneLine(total.sums));
    }

  private:
    static std::string Name(const std::string& track) {
        return console::Escape(track, console::LineFeeds::kEscape);
    }

    std::string Coloured(Severity severity) const {
        const char* const name = SeverityName(severity);
        return in_colour_ ? ColourOf(severity) + std::string(name) + kPlain : name;
    }

    // With what stands in quotation marks in bold.
    std::string Emphasised(const std::string& text) const {
        if (!in_colour_) {
            return text;
        }
        std::string emphasised;
        std::size_t done = 0;
        for (Piece piece = NextQuoted(text, 0); piece.begin < text.size();
             piece = NextQuoted(text, done)) {
            emphasised += text.substr(done, piece.begin - done) + kBold +
                          text.substr(piece.begin, piece.end - piece.begin) + kPlain;
            done = piece.end;
        }
        return emphasised + text.substr(done);
    }

    bool in_colour_;
};

}  // namespace

const char* LevelOf(Severity severity, const char* less) {
    switch (severity) {
        case Severity::kLost:
            return "error";
        case Severity::kChanged:
            return "warning";
        case Severity::kRemark:
            break;
    }
    return less;
}

std::string InWords(const Fold& fold) {
    const std::string more = std::to_string(fold.others.count) + " more ";
    if (fold.kind == Fold::Kind::kRest) {
        return "and " + more + "like these, " + Lines(fold.others);
    }
    return fold.others.count == 0
               ? fold.finding.message
               : fold.finding.message + ", and " + more + "behind it, " + Lines(fold.others);
}

std::string Advice(const Fold& fold) {
    return fold.kind == Fold::Kind::kRest ? "--all shows each" : fold.finding.hint();
}

std::unique_ptr<Report> MakeTextReport(bool in_colour) {
    return std::make_unique<TextReport>(in_colour);
}

}  // namespace quill::check
