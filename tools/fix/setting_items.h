// The settings in a list of them, as somebody wrote them.
#ifndef TOOLS_FIX_SETTING_ITEMS_H_
#define TOOLS_FIX_SETTING_ITEMS_H_

#include <string>
#include <string_view>
#include <vector>

namespace quill::fix {

// A piece of the list, and what stands before it.
struct SettingItem {
    std::string before;  // spaces
    std::string text;
    std::string written;         // as it was, with the pieces that were put to it
    const char* code = nullptr;  // of the change to it
    bool dropped = false;
    bool glued = false;  // to the item before, by a comma or a blank that is no space
    bool glues = false;  // the one behind
};

// In small letters. An older draft had the first letter of each name, but "t" for the position of
// the text and "d" for the direction.
std::string SettingName(const std::string& written);

// Whether the text is the name of a setting, however it is written.
bool MeansSetting(const std::string& text);

// Apart where a comma, a semicolon or a blank divides them, and in one where a colon or an equals
// sign stands apart from what belongs to it.
std::vector<SettingItem> SplitSettings(std::string_view settings);

// What stands between two items and cannot be seen, without the spaces around it.
std::string HiddenIn(std::string_view between);

}  // namespace quill::fix

#endif  // TOOLS_FIX_SETTING_ITEMS_H_
