// Cue settings that are not written as the module reads them.
#ifndef TOOLS_FIX_SETTINGS_H_
#define TOOLS_FIX_SETTINGS_H_

#include <string>
#include <string_view>
#include <vector>

#include "tools/fix/fixer.h"
#include "tools/fix/note.h"

namespace quill::fix {

struct SettingsFix {
    struct Change {
        const char* code;
        std::string before;
        std::string after;
    };

    std::string text;  // the whole list; as it was when there are no changes
    std::vector<Change> changes;
    std::string kept;             // the settings without those that are changed
    std::vector<Effect> effects;  // of those that are changed
};

// Makes the changes that are wanted, to a list without spaces before it. Leaves the list alone when
// one setting stands in it twice, as it would have to be known which is meant.
SettingsFix FixSettings(std::string_view settings, const check::CodeFilter& filter);

}  // namespace quill::fix

#endif  // TOOLS_FIX_SETTINGS_H_
