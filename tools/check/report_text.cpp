#include <cstdint>

#include "tools/check/report.h"
#include "tools/console/escape.h"

namespace quill::check {
namespace {

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

std::string LostBlocks(const Sums& sums) {
    std::string text;
    for (const auto& [number, count] : sums.lost_blocks) {
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " by " + number;
    }
    return text.empty() ? "none" : text;
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

class TextReport : public Report {
  public:
    TextReport(console::Output& output, bool in_colour) : Report(output), in_colour_(in_colour) {}

  private:
    std::string Format(const std::string& track, const Finding& finding) const override {
        return console::Escape(track, console::LineFeeds::kEscape) + ":" +
               std::to_string(finding.line) + ": " + Coloured(finding.code->severity) + ": " +
               finding.message + " [" + finding.code->number + "]; " + finding.code->hint + "\n";
    }

    std::string Format(const std::string& track, const Sums& sums) const override {
        return console::Escape(track, console::LineFeeds::kEscape) + ": " +
               Count(sums.cues_delivered, "cue") + " delivered, " +
               std::to_string(sums.Count(Severity::kLost)) + " lost, " +
               std::to_string(sums.Count(Severity::kChanged)) + " changed, " +
               Count(sums.Count(Severity::kRemark), "remark") + "\n" +
               "  lost: " + LostBlocks(sums) + "\n" +
               "  header lines: " + std::to_string(sums.header_lines_used) + " used, " +
               std::to_string(sums.header_lines_ignored) +
               " ignored; comments: " + std::to_string(sums.comments) + "\n" +
               "  bytes: " + Bytes(sums) + "\n";
    }

    std::string Format(const Code& code) const override {
        constexpr std::size_t kSeverityWidth = 8;
        std::string severity = SeverityName(code.severity);
        severity.resize(kSeverityWidth, ' ');
        return std::string(code.number) + " " + severity + code.name + ": " + code.cause + "; " +
               code.hint + "\n";
    }

    std::string Coloured(Severity severity) const {
        const char* const name = SeverityName(severity);
        return in_colour_ ? ColourOf(severity) + std::string(name) + "\x1B[0m" : name;
    }

    bool in_colour_;
};

}  // namespace

std::unique_ptr<Report> MakeTextReport(console::Output& output, bool in_colour) {
    return std::make_unique<TextReport>(output, in_colour);
}

}  // namespace quill::check
