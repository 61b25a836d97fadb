// Cue settings that are not written as the module reads them.
#ifndef TOOLS_FIX_SETTINGS_H_
#define TOOLS_FIX_SETTINGS_H_

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/check/code_filter.h"
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

// Fixes lists of settings. Most tracks have few, which are fixed once.
class SettingsFixer {
  public:
    // The filter, which lets through what is to be fixed, must outlive the fixer.
    explicit SettingsFixer(const check::CodeFilter& filter) : filter_(filter) {}

    // For a list without spaces before it. Leaves the list alone when one setting stands in it
    // twice, as it would have to be known which is meant. Valid as long as the fixer.
    const SettingsFix& Of(std::string_view settings);

  private:
    const check::CodeFilter& filter_;
    std::map<std::string, SettingsFix, std::less<>> known_;
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_SETTINGS_H_
