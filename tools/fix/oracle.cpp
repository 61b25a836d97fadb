#include "tools/fix/oracle.h"

#include "tools/check/finding.h"
#include "tools/check/header_check.h"
#include "tools/check/sums.h"
#include "tools/check/track_text.h"

namespace quill::fix {

Oracle::Oracle(const host::ModuleHandle& module, host::DiagnosticsCapture& capture)
    : module_(module), capture_(capture), parser_(module, capture, "WEBVTT\n\n") {}

const check::Code* Oracle::FaultOfMap(std::string_view line) {
    const std::string first = "WEBVTT\n";
    const std::string track = first + std::string(line) + "\n\n";
    const check::ChunkPlan plan(track, std::nullopt);
    check::HeaderCheck header(module_, capture_, track, plan);
    check::Findings findings;
    check::Sums sums;
    header.Run(first.size(), findings, sums);
    return findings.empty() ? nullptr : findings[0].code;
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
