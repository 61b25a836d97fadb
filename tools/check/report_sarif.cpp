#include <cctype>
#include <string_view>

#include "quillcaption/quillcaption.h"
#include "tools/check/report.h"
#include "tools/console/escape.h"
#include "tools/console/json.h"

namespace quill::check {
namespace {

using console::Json;
using console::JsonText;

constexpr char kSchema[] =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";
// The rule of a track that could not be checked, which no code stands for.
constexpr char kUnchecked[] = "unchecked";
constexpr char kJoint[] = ",";

Json Text(const std::string& text) {
    return {{"text", text}};
}

// The name of a file as a reference: relative to where quill ran, unless it is absolute.
std::string UriOf(const std::string& track) {
    std::string uri = track.substr(0, 1) == "/" ? "file://" : "";
    for (const char c : track) {
        const auto byte = static_cast<unsigned char>(c);
        const bool is_safe =
            byte < 0x80 && (std::isalnum(byte) != 0 ||
                            std::string_view("-._~/").find(c) != std::string_view::npos);
        uri += is_safe ? std::string(1, c) : console::PercentCode(c);
    }
    return uri;
}

Json Location(const std::string& track, const Json& region) {
    Json location;
    location["physicalLocation"]["artifactLocation"]["uri"] = UriOf(track);
    if (!region.is_null()) {
        location["physicalLocation"]["region"] = region;
    }
    return location;
}

Json Rule(const char* id, const char* name, const char* level, const char* cause) {
    return {{"id", id},
            {"name", name},
            {"shortDescription", Text(cause)},
            {"defaultConfiguration", {{"level", level}}}};
}

Json Rules() {
    Json rules = Json::array();
    for (std::size_t index = 0; index < CodeCount(); ++index) {
        const Code& code = Codes()[index];
        rules.push_back(Rule(code.number, code.name, LevelOf(code.severity, "note"), code.cause));
        rules.back()["help"] = Text(code.hint);
    }
    rules.push_back(Rule(kUnchecked, kUnchecked, "error", "The track could not be checked"));
    return rules;
}

// One run. Results come one on a line, so that no more than one is held.
class SarifReport : public Report {
  public:
    bool Folds() const override { return false; }

    std::string Beginning() const override {
        const Json driver = {
            {"name", "quill check"}, {"semanticVersion", QUILLCAPTION_VERSION}, {"rules", Rules()}};
        return std::string(R"({"$schema":")") + kSchema +
               R"(","version":"2.1.0","runs":[{"tool":)" + JsonText({{"driver", driver}}) +
               R"(,"columnKind":"unicodeCodePoints","results":[)";
    }

    std::string Ending(bool complete) const override {
        return "\n],\"invocations\":[" + JsonText({{"executionSuccessful", complete}}) + "]}]}\n";
    }

    std::string Joint() const override { return kJoint; }

    std::string Format(const std::string& track, const Fold& fold) const override {
        const Finding& finding = fold.finding;
        Json region = {{"startLine", finding.line}};
        if (finding.column != 0) {
            region["startColumn"] = finding.column;
        }
        Json result = Result(finding.code->number, static_cast<std::size_t>(finding.code - Codes()),
                             finding.message + "; " + finding.hint(), Location(track, region));
        result["level"] = LevelOf(finding.code->severity, "note");
        if (finding.cause_line != 0) {
            result["relatedLocations"] =
                Json::array({Location(track, {{"startLine", finding.cause_line}})});
        }
        return Item(result);
    }

    std::string FormatFailure(const std::string& track, const std::string& why) const override {
        return Item(Result(kUnchecked, CodeCount(), why, Location(track, nullptr)));
    }

  private:
    static Json Result(const char* rule, std::size_t index, const std::string& message,
                       const Json& location) {
        return {{"ruleId", rule},
                {"ruleIndex", index},
                {"level", "error"},
                {"message", Text(message)},
                {"locations", Json::array({location})}};
    }

    static std::string Item(const Json& result) { return kJoint + ("\n" + JsonText(result)); }
};

}  // namespace

std::unique_ptr<Report> MakeSarifReport() {
    return std::make_unique<SarifReport>();
}

}  // namespace quill::check
