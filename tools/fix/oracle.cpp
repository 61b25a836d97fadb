#include "tools/fix/oracle.h"

#include "tools/check/module_words.h"

namespace quill::fix {

Oracle::Oracle(const host::ModuleHandle& module, host::DiagnosticsCapture& capture)
    : module_(module), capture_(capture), parser_(module, capture, "WEBVTT\n\n") {}

bool Oracle::ReadsMap(std::string_view line) {
    check::LoneParser parser(module_, capture_, "WEBVTT\n");
    const check::Verdict& verdict = parser.Ask(std::string(line) + "\n");
    return line.substr(0, 15) == "X-TIMESTAMP-MAP" && verdict.fate == check::Fate::kInHeader &&
           !check::Says(verdict.printed, check::words::kMap);
}

const check::Verdict& Oracle::Block(std::string_view block, bool is_open) {
    if (is_open) {
        return parser_.AskOpen(block);
    }
    return parser_.Ask(std::string(block) + "\n\n");
}

std::optional<double> Oracle::Time(std::string_view time) {
    const check::Verdict& verdict = Block("00:00.000 --> " + std::string(time) + "\nx");
    if (verdict.fate != check::Fate::kDelivered) {
        return std::nullopt;
    }
    return verdict.cue.end;
}

std::optional<check::CueCopy> Oracle::Settings(const std::string& settings) {
    const auto known = settings_.find(settings);
    if (known != settings_.end()) {
        return known->second;
    }
    const check::Verdict& verdict = Block("00:00.000 --> 00:01.000 " + settings + "\nx");
    std::optional<check::CueCopy> cue;
    if (verdict.fate == check::Fate::kDelivered) {
        cue = verdict.cue;
    }
    return settings_.emplace(settings, cue).first->second;
}

std::optional<std::string> Oracle::Shown(const std::string& lines) {
    const check::Verdict& verdict = Block("00:00.000 --> 00:01.000\n" + lines);
    if (verdict.fate != check::Fate::kDelivered) {
        return std::nullopt;
    }
    return verdict.cue.text;
}

}  // namespace quill::fix
