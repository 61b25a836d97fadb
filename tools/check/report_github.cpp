#include <string_view>

#include "tools/check/report.h"
#include "tools/console/escape.h"

namespace quill::check {
namespace {

// What would end a command, or one of its properties, is written as its number.
std::string Escaped(std::string_view text, std::string_view unsafe) {
    std::string escaped;
    for (const char c : text) {
        if (unsafe.find(c) == std::string_view::npos) {
            escaped += c;
        } else {
            escaped += console::PercentCode(c);
        }
    }
    return escaped;
}

std::string Property(std::string_view text) {
    return Escaped(text, "%\r\n:,");
}

std::string Message(std::string_view text) {
    return Escaped(text, "%\r\n") + "\n";
}

class GithubReport : public Report {
  public:
    bool Folds() const override { return true; }

    std::string Format(const std::string& track, const Fold& fold) const override {
        const Finding& finding = fold.finding;
        const Code& code = *finding.code;
        std::string text = std::string("::") + LevelOf(code.severity, "notice") +
                           " file=" + Property(track) + ",line=" + std::to_string(finding.line);
        if (fold.kind == Fold::Kind::kFinding && finding.column != 0) {
            text += ",col=" + std::to_string(finding.column);
        }
        return text + ",title=" + code.number + " " + code.name +
               "::" + Message(InWords(fold) + "; " + Advice(fold));
    }

    std::string FormatFailure(const std::string& track, const std::string& why) const override {
        return "::error file=" + Property(track) + "::" + Message(why);
    }
};

}  // namespace

std::unique_ptr<Report> MakeGithubReport() {
    return std::make_unique<GithubReport>();
}

}  // namespace quill::check
