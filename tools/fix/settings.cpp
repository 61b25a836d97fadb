#include "tools/fix/settings.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>
#include <utility>

#include "tools/check/characters.h"
#include "tools/check/meant_timing.h"
#include "tools/check/setting_remarks.h"

namespace quill::fix {
namespace {

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    return text;
}

// In small letters. An older draft had the first letter of each name, but "t" for the position of
// the text and "d" for the direction.
std::string NameOf(const std::string& written) {
    static constexpr std::pair<const char*, const char*> kLetters[] = {
        {"A", "align"}, {"D", "vertical"}, {"L", "line"}, {"S", "size"}, {"T", "position"}};
    for (const auto& [letter, name] : kLetters) {
        if (written == letter) {
            return name;
        }
    }
    return Lower(written);
}

bool IsName(const std::string& text) {
    return check::IsSettingName(NameOf(text));
}

// A piece of the list, and what stands before it.
struct Item {
    std::string before;  // spaces
    std::string text;
    std::string written;         // as it was, with the pieces that were put to it
    const char* code = nullptr;  // of the change to it
    bool dropped = false;
    bool glued = false;  // to the item before, by a comma or a blank that is no space
    bool glues = false;  // the one behind
};

// What stands between two items and cannot be seen, without the spaces around it.
std::string HiddenIn(std::string_view between) {
    const std::size_t begin = between.find_first_not_of(' ');
    return begin == std::string::npos
               ? ""
               : std::string(between.substr(begin, between.find_last_not_of(' ') + 1 - begin));
}

// Where a comma or a semicolon divides a setting from one that begins there; npos for none.
std::size_t NextSetting(const std::string& text, std::size_t at) {
    for (at = text.find_first_of(",;", at); at < text.size();
         at = text.find_first_of(",;", at + 1)) {
        const std::size_t end = text.find_first_of(":=", at);
        if (end < text.size() && IsName(text.substr(at + 1, end - at - 1))) {
            return at;
        }
    }
    return std::string::npos;
}

// What quill check finds about several settings in one item.
const char* GlueCode(const std::string& first) {
    const std::string name = NameOf(first.substr(0, first.find(':')));
    return name == "align"      ? "align-keyword"
           : name == "vertical" ? "vertical-keyword"
                                : "setting-value";
}

std::vector<Item> SplitSettings(std::string_view settings) {
    const check::PlainText looks(settings);
    const std::string& text = looks.text();
    std::vector<Item> items;
    std::size_t reached = 0;
    for (std::size_t at = text.find_first_not_of(' '); at < text.size();) {
        const std::size_t end = std::min({text.find(' ', at), NextSetting(text, at), text.size()});
        const std::size_t item_end = looks.End(end);
        const std::string_view item = settings.substr(looks.Begin(at), item_end - looks.Begin(at));
        items.push_back({std::string(settings.substr(reached, looks.Begin(at) - reached)),
                         std::string(item), std::string(item)});
        reached = item_end;
        at = std::min(text.find_first_not_of(' ', end + (text[end] == ' ' ? 0 : 1)), text.size());
    }
    for (std::size_t index = 1; index < items.size(); ++index) {
        items[index].glued = items[index].before.back() != ' ';
        items[index - 1].glues = items[index].before.front() != ' ';
    }
    if (!items.empty()) {
        items.back().glues = reached < settings.size() && settings[reached] != ' ';
    }
    return items;
}

// "align: end", "align :end" and "align = end" are one setting.
void JoinPieces(std::vector<Item>& items) {
    const auto ends_open = [](const std::string& text) {
        return !text.empty() && (text.back() == ':' || text.back() == '=') &&
               text.find_first_of(":=") == text.size() - 1 &&
               IsName(text.substr(0, text.size() - 1));
    };
    for (std::size_t index = 0; index + 1 < items.size();) {
        Item& item = items[index];
        const Item& next = items[index + 1];
        const bool begins_with_mark = next.text[0] == ':' || next.text[0] == '=';
        const bool belongs =
            (IsName(item.text) && begins_with_mark) ||
            (ends_open(item.text) && next.text.find_first_of(":=") == std::string::npos);
        if (!belongs) {
            ++index;
            continue;
        }
        item.code = "empty-setting";
        item.written += next.before + next.written;
        item.text += next.text;
        item.glues = next.glues;
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(index) + 1);
    }
}

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
    const std::string word = Lower(second);
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
    std::string word = Lower(value);
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
        const std::string word = Lower(value);
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

// What a setting that is in order comes to; nothing for one that a player is not told, or whose
// value is not for us to say.
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
    if (name == "size" && percent && !negative && real <= 100) {
        return Effect{Effect::Field::kSize, whole};
    }
    if (name == "position" && percent && !negative && real <= 100) {
        return Effect{Effect::Field::kPosition, whole};
    }
    return std::nullopt;
}

void FixItem(Item& item) {
    const std::size_t mark = item.text.find_first_of(":=");
    if (mark == std::string::npos || !IsName(item.text.substr(0, mark))) {
        return;
    }
    const std::string name = NameOf(item.text.substr(0, mark));
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

bool HasDoubles(const std::vector<Item>& items) {
    std::set<std::string> names;
    return std::any_of(items.begin(), items.end(), [&names](const Item& item) {
        const std::string name = NameOf(item.text.substr(0, item.text.find_first_of(":=")));
        return IsName(name) && !names.insert(name).second;
    });
}

SettingsFix AsItWas(std::string_view settings) {
    SettingsFix fix;
    fix.text = settings;
    return fix;
}

SettingsFix FixSettings(std::string_view settings, const check::CodeFilter& filter) {
    SettingsFix fix;
    std::vector<Item> items = SplitSettings(settings);
    JoinPieces(items);
    if (items.empty() || HasDoubles(items)) {
        return AsItWas(settings);
    }
    bool glued_before = false;
    const char* glue = nullptr;
    std::size_t reached = 0;
    const auto drop_hidden = [&](std::string_view between) {
        const std::string hidden = HiddenIn(between);
        const bool drops = !hidden.empty() && between.front() == ' ' &&
                           filter.Lets(check::CodeNamed("no-setting"));
        if (drops) {
            fix.changes.push_back({"no-setting", hidden, ""});
        }
        return drops;
    };
    for (Item& item : items) {
        reached += item.before.size() + item.written.size();
        if (!item.glued && drop_hidden(item.before)) {
            item.before = " ";
        }
        const Item as_written = item;
        FixItem(item);
        const std::optional<Effect> effect = EffectOf(item.text);
        if (!effect && !item.dropped && (item.glued || item.glues)) {
            return AsItWas(settings);
        }
        if (!effect && !item.dropped) {
            // It would not be in order either.
            item.text = item.written;
            item.code = nullptr;
        }
        // Several items are read as one, which the first names.
        if (item.glued || item.glues) {
            glue = item.glued && glue != nullptr ? glue : GlueCode(item.text);
            item.code = glue;
        }
        const bool changes = item.dropped || item.text != item.written || item.glued || item.glues;
        if (!changes || !filter.Lets(check::CodeNamed(item.code))) {
            fix.text += (glued_before ? " " : as_written.before) + as_written.written;
            glued_before = false;
            fix.kept += as_written.written + " ";
            continue;
        }
        fix.changes.push_back({item.code, item.written, item.dropped ? "" : item.text});
        if (item.dropped) {
            glued_before = glued_before || item.glues || item.glued;
            continue;
        }
        fix.text += (item.glued || glued_before ? " " : item.before) + item.text;
        glued_before = item.glues;
        if (effect) {
            fix.effects.push_back(*effect);
        }
    }
    drop_hidden(settings.substr(reached));
    if (fix.changes.empty()) {
        return AsItWas(settings);
    }
    fix.text.erase(0, fix.text.find_first_not_of(' '));
    return fix;
}

}  // namespace

const SettingsFix& SettingsFixer::Of(std::string_view settings) {
    const auto known = known_.find(settings);
    if (known != known_.end()) {
        return known->second;
    }
    return known_.emplace(settings, FixSettings(settings, filter_)).first->second;
}

}  // namespace quill::fix
