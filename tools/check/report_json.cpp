#include <algorithm>

#include "tools/check/report.h"
#include "tools/console/json.h"

namespace quill::check {
namespace {

using console::Json;
using console::JsonLine;

// The class as a key: "header_used".
std::string KeyOf(ByteClass byte_class) {
    std::string key = ByteClassName(byte_class);
    std::replace(key.begin(), key.end(), ' ', '_');
    return key;
}

Json OfCode(const Code& code) {
    Json object;
    object["code"] = code.number;
    object["name"] = code.name;
    object["severity"] = SeverityName(code.severity);
    return object;
}

Json OfSums(const Sums& sums) {
    Json object;
    object["chunk_size"] = sums.chunk_size != 0 ? Json(sums.chunk_size) : Json(nullptr);
    object["cues_delivered"] = sums.cues_delivered;
    for (const Severity severity : {Severity::kLost, Severity::kChanged, Severity::kRemark}) {
        object["findings"][SeverityName(severity)] = sums.Count(severity);
    }
    object["lost"] = {{"cues", sums.Lost(Subject::kCue)},
                      {"lines", sums.Lost(Subject::kLine)},
                      {"tracks", sums.Lost(Subject::kTrack)}};
    object["codes"] = Json::object();
    for (std::size_t index = 0; index < CodeCount(); ++index) {
        if (sums.codes.at(index) != 0) {
            object["codes"][Codes()[index].number] = sums.codes.at(index);
        }
    }
    object["header_lines"] = {{"used", sums.header_lines_used},
                              {"ignored", sums.header_lines_ignored}};
    object["comments"] = sums.comments;
    object["size"] = sums.AllBytes();
    for (std::size_t index = 0; index < kByteClassCount; ++index) {
        object["bytes"][KeyOf(static_cast<ByteClass>(index))] = sums.bytes.at(index);
    }
    return object;
}

class JsonReport : public Report {
  public:
    bool Folds() const override { return false; }

    std::string Format(const std::string& track, const Fold& fold) const override {
        const Finding& finding = fold.finding;
        Json object = {{"track", track}, {"line", finding.line}};
        if (finding.column != 0) {
            object["column"] = finding.column;
        }
        if (finding.cause_line != 0) {
            object["cause_line"] = finding.cause_line;
        }
        object.update(OfCode(*finding.code));
        object["message"] = finding.message;
        object["hint"] = finding.hint();
        return JsonLine(object);
    }

    std::string Format(const std::string& track, const BlockNote& note) const override {
        Json object = {{"track", track}, {"line", note.line}, {"lines", note.line_count}};
        object["block"] = note.line_count == 0                 ? "remains"
                          : note.fate == ByteClass::kSignature ? "header"
                                                               : KeyOf(note.fate);
        object["chunk"] = note.chunk;
        if (note.cue != 0) {
            object["cue"] = note.cue;
        }
        if (note.times) {
            object["start"] = note.times->start;
            object["end"] = note.times->end;
        }
        return JsonLine(object);
    }

    std::string Format(const Code& code) const override {
        Json object = OfCode(code);
        object["cause"] = code.cause;
        object["hint"] = code.hint;
        return JsonLine(object);
    }

    std::string Format(const std::string& track, const Sums& sums, bool) const override {
        return JsonLine({{"track", track}, {"sums", OfSums(sums)}});
    }

    std::string Format(const Total& total, bool) const override {
        return JsonLine({{"total",
                          {{"tracks", total.tracks},
                           {"with_findings", total.with_findings},
                           {"failed", total.failed}}},
                         {"sums", OfSums(total.sums)}});
    }

    std::string FormatFailure(const std::string& track, const std::string& why) const override {
        return JsonLine({{"track", track}, {"failure", why}});
    }
};

}  // namespace

std::unique_ptr<Report> MakeJsonReport() {
    return std::make_unique<JsonReport>();
}

}  // namespace quill::check
