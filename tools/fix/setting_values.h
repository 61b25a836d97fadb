// What is meant by a cue setting, and what a player is told for it.
#ifndef TOOLS_FIX_SETTING_VALUES_H_
#define TOOLS_FIX_SETTING_VALUES_H_

#include <optional>
#include <string>

#include "tools/fix/note.h"
#include "tools/fix/setting_items.h"

namespace quill::fix {

// What a setting that is in order comes to; nothing for one that a player is not told, or whose
// value is not for us to say.
std::optional<Effect> EffectOf(const std::string& text);

// Writes what is meant by the item into its text, or drops it, and says by a code what was wrong.
// Leaves one alone that is no setting.
void FixItem(SettingItem& item);

}  // namespace quill::fix

#endif  // TOOLS_FIX_SETTING_VALUES_H_
