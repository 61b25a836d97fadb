#include "tools/fix/setting_items.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/check/characters.h"
#include "tools/check/meant_timing.h"
#include "tools/console/text.h"

namespace quill::fix {
namespace {

// Where a comma or a semicolon divides a setting from one that begins there; npos for none.
std::size_t NextSetting(const std::string& text, std::size_t at) {
    for (at = text.find_first_of(",;", at); at < text.size();
         at = text.find_first_of(",;", at + 1)) {
        const std::size_t end = text.find_first_of(":=", at);
        if (end < text.size() && MeansSetting(text.substr(at + 1, end - at - 1))) {
            return at;
        }
    }
    return std::string::npos;
}

std::vector<SettingItem> SplitAtBlanks(std::string_view settings) {
    const check::PlainText looks(settings);
    const std::string& text = looks.text();
    std::vector<SettingItem> items;
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
void JoinPieces(std::vector<SettingItem>& items) {
    const auto ends_open = [](const std::string& text) {
        return !text.empty() && (text.back() == ':' || text.back() == '=') &&
               text.find_first_of(":=") == text.size() - 1 &&
               MeansSetting(text.substr(0, text.size() - 1));
    };
    for (std::size_t index = 0; index + 1 < items.size();) {
        SettingItem& item = items[index];
        const SettingItem& next = items[index + 1];
        const bool begins_with_mark = next.text[0] == ':' || next.text[0] == '=';
        const bool belongs =
            (MeansSetting(item.text) && begins_with_mark) ||
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

}  // namespace

std::string SettingName(const std::string& written) {
    static constexpr std::pair<const char*, const char*> kLetters[] = {
        {"A", "align"}, {"D", "vertical"}, {"L", "line"}, {"S", "size"}, {"T", "position"}};
    for (const auto& [letter, name] : kLetters) {
        if (written == letter) {
            return name;
        }
    }
    return console::InSmallLetters(written);
}

bool MeansSetting(const std::string& text) {
    return check::IsSettingName(SettingName(text));
}

std::vector<SettingItem> SplitSettings(std::string_view settings) {
    std::vector<SettingItem> items = SplitAtBlanks(settings);
    JoinPieces(items);
    return items;
}

std::string HiddenIn(std::string_view between) {
    const std::size_t begin = between.find_first_not_of(' ');
    return begin == std::string::npos
               ? ""
               : std::string(between.substr(begin, between.find_last_not_of(' ') + 1 - begin));
}

}  // namespace quill::fix
