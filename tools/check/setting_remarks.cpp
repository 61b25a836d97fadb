#include "tools/check/setting_remarks.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "quillcaption/quillcaption.h"
#include "tools/check/characters.h"
#include "tools/check/meant_timing.h"
#include "tools/check/module_words.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

constexpr int kWholeScreen = 100;
constexpr char kContrary[] = "align:end size:37% position:37% line:7 vertical:rl";

struct Setting {
    std::string text;
    std::string name;
    std::string first;   // of the value, up to a comma
    std::string second;  // behind the comma
    bool has_second;
};

Setting Split(const std::string& item) {
    const std::size_t colon = std::min(item.find(':'), item.size());
    const std::string value = item.substr(std::min(colon + 1, item.size()));
    const std::size_t comma = value.find(',');
    const bool has_second = comma != std::string::npos;
    return {item, item.substr(0, colon), value.substr(0, comma),
            has_second ? value.substr(comma + 1) : "", has_second};
}

// Digits and a percent sign, perhaps a point: a value that can only be out of range.
bool IsPercentage(const std::string& value) {
    return value.size() > 1 && value.back() == '%' &&
           value.find_first_not_of("0123456789.") == value.size() - 1;
}

std::string WithName(const std::string& item, const std::string& known, const std::string& name) {
    return item.substr(0, known.size()) == known ? name + item.substr(known.size()) : item;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// The whole percents of a percentage with a fraction, rounded.
std::string Rounded(const Setting& setting) {
    const std::size_t point = setting.first.find('.');
    if (point == std::string::npos || point == 0 || setting.first.size() <= point + 1 ||
        setting.first.find_first_not_of("0123456789.%") != std::string::npos || point > 3) {
        return setting.text;
    }
    const int whole =
        std::stoi(setting.first.substr(0, point)) + (setting.first[point + 1] >= '5' ? 1 : 0);
    return setting.name + ":" + std::to_string(whole) + (setting.first.back() == '%' ? "%" : "") +
           (setting.has_second ? "," + setting.second : "");
}

// What an author may have meant by the setting, likely things first.
std::vector<std::string> MeantBy(const std::string& item) {
    const std::string plain = Plain(item);
    const std::string small = console::InSmallLetters(plain);
    std::string parted = small;
    std::replace(parted.begin(), parted.end(), ',', ' ');
    std::replace(parted.begin(), parted.end(), ';', ' ');
    std::vector<std::string> meant = {plain,
                                      small,
                                      Replaced(small, "=", ":"),
                                      Replaced(small, ":center", ":middle"),
                                      Replaced(small, ":centre", ":middle"),
                                      parted,
                                      Rounded(Split(WithDecimalPoint(small))),
                                      WithName(small, "a:", "align:"),
                                      WithName(small, "l:", "line:"),
                                      WithName(small, "t:", "position:"),
                                      WithName(small, "s:", "size:"),
                                      small == "d:vertical" ? "vertical:rl" : small,
                                      WithName(small, "d:vertical-", "vertical:")};
    if (console::IsDigit(small.back())) {
        meant.push_back(small + "%");
    }
    return meant;
}

Finding NotUsed(const Setting& setting, const std::string& printed) {
    const std::string quoted = Quoted(setting.text);
    if (setting.name == "region") {
        return {0, "region", quoted + " is not delivered"};
    }
    if (setting.name == "vertical") {
        return {0, "vertical-keyword", quoted + " is dropped"};
    }
    if (setting.name != "line" && setting.name != "size" && setting.name != "position") {
        return {0, "unknown-setting", quoted + " is dropped"};
    }
    const bool range = Says(printed, words::kSettingRange) ||
                       (setting.name == "position" && IsPercentage(setting.first));
    return {0, range ? "setting-range" : "setting-value", quoted + " is dropped"};
}

// The number that the record holds for the setting.
long long Delivered(const std::string& name, const CueCopy& cue) {
    return name == "size" ? cue.size : name == "position" ? cue.position : cue.line;
}

// The whole part of the number that was written, and where it ends.
long long Written(const std::string& value, std::size_t& end) {
    constexpr long long kEnough = 1ll << 40;
    const bool negative = value.substr(0, 1) == "-";
    long long written = 0;
    for (end = negative ? 1 : 0; end < value.size() && console::IsDigit(value[end]); ++end) {
        written = std::min(written * 10 + (value[end] - '0'), kEnough);
    }
    return negative ? -written : written;
}

// The number as it was written against the one that arrives.
void CompareNumbers(const Setting& setting, const CueCopy& cue, Findings& findings) {
    std::size_t end = 0;
    const long long written = Written(setting.first, end);
    const long long delivered = Delivered(setting.name, cue);
    const bool differs = delivered != written;
    if (differs || setting.first.find_first_of("123456789", end) != std::string::npos) {
        findings.emplace_back(
            0, differs ? "number-wraps" : "fraction",
            Quoted(setting.text) + " is delivered as " + std::to_string(delivered));
    } else if (setting.name == "size" && delivered > kWholeScreen) {
        findings.emplace_back(0, "size-range", Quoted(setting.text) + " is wider than the screen");
    }
}

bool IsAlignment(const std::string& word) {
    return word == "start" || word == "middle" || word == "end";
}

Findings Used(const Setting& setting, const CueCopy& cue) {
    Findings findings;
    if (setting.name == "align") {
        if (cue.align == WEBVTT_TEXT_ALIGN_START && setting.text != "align:start") {
            findings.emplace_back(0, "align-keyword", Quoted(setting.text) + " is taken for start");
        }
        return findings;
    }
    if (setting.name == "vertical") {
        return findings;
    }
    CompareNumbers(setting, cue, findings);
    if (setting.has_second && !IsAlignment(setting.second)) {
        findings.emplace_back(
            0, "alignment-part",
            Quoted(setting.second) + " in " + Quoted(setting.text) + " is taken for start");
    }
    return findings;
}

}  // namespace

std::string WithDecimalPoint(std::string setting) {
    const std::size_t comma = std::min(setting.find(','), setting.size());
    const std::size_t sign =
        std::min(setting.find_first_not_of("0123456789", comma + 1), setting.size());
    if (comma > 0 && console::IsDigit(setting[comma - 1]) && sign > comma + 1 &&
        setting[sign] == '%' && (sign + 1 == setting.size() || setting[sign + 1] == ',')) {
        setting[comma] = '.';
    }
    return setting;
}

SettingRemarks::SettingRemarks(LoneParser& parser) : parser_(parser) {
    plain_ = AskCueWith("").cue;
    contrary_ = AskCueWith(kContrary).cue;
}

const Verdict& SettingRemarks::AskCueWith(const std::string& settings) {
    return parser_.Ask("00:00.000 --> 00:01.000 " + settings + "\nx\n\n");
}

void SettingRemarks::Examine(std::string_view text, std::string_view settings, std::uint32_t line,
                             Findings& findings) {
    if (const std::string_view words = TextAmongSettings(settings); !words.empty()) {
        findings.push_back(Finding(line, "no-setting",
                                   Quoted(words) + " stands on the timing line, and is not shown",
                                   "put it on a line of its own below, or remove it")
                               .At(text, words));
        return;
    }
    std::string torn;  // a name and its colon, behind which the value may be the next item
    while (!settings.empty()) {
        const std::size_t end = std::min(settings.find(' '), settings.size());
        const std::string_view piece = settings.substr(0, end);
        const std::string item(piece);
        settings.remove_prefix(std::min(end + 1, settings.size()));
        if (item.empty()) {
            continue;
        }
        if (!torn.empty() && item.find(':') == std::string::npos && IsTaken(torn + item)) {
            findings.back().fix = "write " + Quoted(torn + item);
            torn.clear();
            continue;
        }
        torn = item.back() == ':' ? item : "";
        for (Finding finding : AnswerFor(item)) {
            finding.line = line;
            findings.push_back(finding.At(text, piece));
        }
    }
}

bool SettingRemarks::IsTaken(const std::string& settings) {
    std::size_t begin = 0;
    while (begin < settings.size()) {
        const std::size_t end = std::min(settings.find(' ', begin), settings.size());
        const std::string item = settings.substr(begin, end - begin);
        if (!item.empty() && !FindFaults(item).empty()) {
            return false;
        }
        begin = end + 1;
    }
    return true;
}

std::string SettingRemarks::WriteInstead(const std::string& item) {
    for (const std::string& meant : MeantBy(item)) {
        if (meant.find_first_not_of(' ') == std::string::npos) {
            return "remove it";
        }
        if (meant != item && IsTaken(meant)) {
            return "write " + Quoted(meant);
        }
    }
    return "";
}

const Findings& SettingRemarks::AnswerFor(const std::string& item) {
    const auto known = answers_.find(item);
    return known != answers_.end() ? known->second
                                   : answers_.emplace(item, Ask(item)).first->second;
}

Findings SettingRemarks::Ask(const std::string& item) {
    Findings findings = FindFaults(item);
    if (!findings.empty()) {
        findings[0].fix = WriteInstead(item);
    }
    return findings;
}

Findings SettingRemarks::FindFaults(const std::string& item) {
    const Verdict alone = AskCueWith(item);
    const bool changes = !SameSettings(alone.cue, plain_) ||
                         !SameSettings(AskCueWith(kContrary + (" " + item)).cue, contrary_);
    if (Says(alone.printed, words::kEmptySetting)) {
        return {{0, "empty-setting", Quoted(item) + " is dropped"}};
    }
    if (item.find(':') == std::string::npos || item[0] == ':') {
        return {{0, "no-setting", Quoted(item) + " is no setting"}};
    }
    const Setting setting = Split(item);
    return changes ? Used(setting, alone.cue) : Findings{NotUsed(setting, alone.printed)};
}

}  // namespace quill::check
