#include "tools/fix/setting_values.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/check/setting_remarks.h"
#include "tools/console/text.h"

namespace quill::fix {
namespace {

// A number that comes to the same in every arithmetic.
bool IsPlainNumber(std::string_view text) {
    constexpr std::size_t kMostDigits = 6;
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string_view fraction = text.substr(std::min(point + 1, text.size()));
    return point > 0 && point <= kMostDigits && fraction.size() <= kMostDigits &&
           text.substr(0, point).find_first_not_of("0123456789") == std::string_view::npos &&
           fraction.find_first_not_of("0123456789") == std::string_view::npos;
}

struct Value {
    std::string number;
    std::string second;  // with its comma
};

Value SplitValue(const std::string& value) {
    const std::size_t comma = std::min(value.find(','), value.size());
    return {value.substr(0, comma), value.substr(comma)};
}

void FixSecond(std::string& second, const char*& code) {
    const std::string word = console::InSmallLetters(second);
    for (const auto& [from, to] : {std::pair(",center", ",middle"), std::pair(",centre", ",middle"),
                                   std::pair(",line-left", ",start"),
                                   std::pair(",line-right", ",end"), std::pair(",start", ",start"),
                                   std::pair(",middle", ",middle"), std::pair(",end", ",end")}) {
        if (word == from && second != to) {
            second = to;
            code = "alignment-part";
        }
    }
}

std::string FixAlign(const std::string& value, const char*& code) {
    std::string word = console::InSmallLetters(value);
    if (word == "center" || word == "centre") {
        word = "middle";
    }
    for (const char* const known : {"start", "middle", "end", "left", "right"}) {
        if (word == known && value != word) {
            code = "align-keyword";
            return word;
        }
    }
    return value;
}

std::string FixPercentage(const std::string& name, const std::string& value, const char*& code) {
    Value parts = SplitValue(value);
    if (IsPlainNumber(parts.number) && std::stod(parts.number) <= 100) {
        code = "setting-value";
        parts.number += '%';
    } else if (name == "size" && parts.second.empty() && !parts.number.empty() &&
               parts.number.back() == '%' &&
               IsPlainNumber(std::string_view(parts.number).substr(0, parts.number.size() - 1)) &&
               std::stod(parts.number) > 100) {
        code = std::stod(parts.number) < 256 ? "size-range" : "number-wraps";
        parts.number = "100%";
    }
    FixSecond(parts.second, code);
    return parts.number + parts.second;
}

std::string FixValue(const std::string& name, const std::string& value, const char*& code) {
    if (name == "align") {
        return FixAlign(value, code);
    }
    if (name == "vertical") {
        const std::string word = console::InSmallLetters(value);
        const bool known = word == "rl" || word == "lr";
        code = known && word != value ? "vertical-keyword" : code;
        return known ? word : value;
    }
    if (name == "size" || name == "position") {
        return FixPercentage(name, value, code);
    }
    if (name == "line") {
        Value parts = SplitValue(value);
        FixSecond(parts.second, code);
        return parts.number + parts.second;
    }
    return value;
}

}  // namespace

std::optional<Effect> EffectOf(const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::string name = text.substr(0, colon);
    const std::string value = colon == std::string::npos ? "" : text.substr(colon + 1);
    const auto index_of = [&value](const std::vector<std::string>& words) {
        return static_cast<int>(std::find(words.begin(), words.end(), value) - words.begin());
    };
    if (name == "align") {
        const int align = index_of({"start", "middle", "end", "left", "right"});
        return align < 5 ? std::optional<Effect>({Effect::Field::kAlign, align}) : std::nullopt;
    }
    if (name == "vertical" && !value.empty()) {
        const int vertical = index_of({"lr", "rl"});
        return vertical < 2 ? std::optional<Effect>({Effect::Field::kVertical, vertical + 1})
                            : std::nullopt;
    }
    auto [number, second] = SplitValue(value);
    const auto& seconds = {"", ",start", ",middle", ",end"};
    if (std::find(seconds.begin(), seconds.end(), second) == seconds.end()) {
        return std::nullopt;
    }
    const bool negative = number.substr(0, 1) == "-";
    number.erase(0, negative ? 1 : 0);
    const bool percent = !number.empty() && number.back() == '%';
    number.resize(number.size() - (percent ? 1 : 0));
    if (!IsPlainNumber(number)) {
        return std::nullopt;
    }
    const double real = std::stod(number);
    const int whole = negative ? -static_cast<int>(real) : static_cast<int>(real);
    if (name == "line" && (!percent || (!negative && real <= 100))) {
        return Effect{percent ? Effect::Field::kLinePercent : Effect::Field::kLine, whole};
    }
    if (name == "size" && second.empty() && percent && !negative && real <= 100) {
        return Effect{Effect::Field::kSize, whole};
    }
    if (name == "position" && percent && !negative && real <= 100) {
        return Effect{Effect::Field::kPosition, whole};
    }
    return std::nullopt;
}

void FixItem(SettingItem& item) {
    const std::size_t mark = item.text.find_first_of(":=");
    if (mark == std::string::npos || !MeansSetting(item.text.substr(0, mark))) {
        return;
    }
    const std::string name = SettingName(item.text.substr(0, mark));
    std::string value = item.text.substr(mark + 1);
    if (item.text == "D:vertical" || item.text == "D:vertical-lr") {
        value = value == "vertical" ? "rl" : "lr";
    }
    if (item.text.compare(0, mark, name) != 0) {
        item.code = "unknown-setting";
    }
    if (item.text[mark] == '=') {
        item.code = "no-setting";
    }
    const std::string number = SplitValue(value).number;
    if (name == "line" && !value.empty() && (number.empty() || number == "-")) {
        item.code = "line-setting";
        item.dropped = true;
        return;
    }
    const std::string pointed = check::WithDecimalPoint(value);
    if (pointed != value && EffectOf(name + ":" + pointed)) {
        value = pointed;
        item.code = name == "line" ? "alignment-part" : "setting-value";
    }
    value = FixValue(name, value, item.code);
    item.text = name + ":" + value;
}

}  // namespace quill::fix
