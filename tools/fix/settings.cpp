#include "tools/fix/settings.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "tools/fix/setting_items.h"
#include "tools/fix/setting_values.h"

namespace quill::fix {
namespace {

// What quill check finds about several settings in one item.
const char* GlueCode(const std::string& first) {
    const std::string name = SettingName(first.substr(0, first.find(':')));
    return name == "align"      ? "align-keyword"
           : name == "vertical" ? "vertical-keyword"
                                : "setting-value";
}

bool HasDoubles(const std::vector<SettingItem>& items) {
    std::set<std::string> names;
    return std::any_of(items.begin(), items.end(), [&names](const SettingItem& item) {
        const std::string name = SettingName(item.text.substr(0, item.text.find_first_of(":=")));
        return MeansSetting(name) && !names.insert(name).second;
    });
}

// Goes through one list, item by item.
class ListFixer {
  public:
    explicit ListFixer(const check::CodeFilter& filter) : filter_(filter) {}

    // Nothing when the list has to be left alone.
    std::optional<SettingsFix> Fix(std::string_view settings) {
        std::vector<SettingItem> items = SplitSettings(settings);
        if (items.empty() || HasDoubles(items)) {
            return std::nullopt;
        }
        std::size_t reached = 0;
        for (SettingItem& item : items) {
            reached += item.before.size() + item.written.size();
            if (!Take(item)) {
                return std::nullopt;
            }
        }
        DropHidden(settings.substr(reached));
        if (fix_.changes.empty()) {
            return std::nullopt;
        }
        fix_.text.erase(0, fix_.text.find_first_not_of(' '));
        return std::move(fix_);
    }

  private:
    // False for an item that is not in order even now, and was read as one with its neighbours.
    bool Take(SettingItem& item) {
        if (!item.glued && DropHidden(item.before)) {
            item.before = " ";
        }
        FixItem(item);
        const std::optional<Effect> effect = EffectOf(item.text);
        const bool is_one_of_several = item.glued || item.glues;
        if (!effect && !item.dropped) {
            if (is_one_of_several) {
                return false;
            }
            item.text = item.written;
            item.code = nullptr;
        }
        // Several items are read as one, which the first names.
        if (is_one_of_several) {
            glue_ = item.glued && glue_ != nullptr ? glue_ : GlueCode(item.text);
            item.code = glue_;
        }
        const bool changes = item.dropped || item.text != item.written || is_one_of_several;
        if (changes && filter_.Lets(check::CodeNamed(item.code))) {
            Change(item, effect);
        } else {
            fix_.text += (glued_before_ ? " " : item.before) + item.written;
            glued_before_ = false;
            fix_.kept += item.written + " ";
        }
        return true;
    }

    void Change(const SettingItem& item, const std::optional<Effect>& effect) {
        fix_.changes.push_back({item.code, item.written, item.dropped ? "" : item.text});
        if (item.dropped) {
            glued_before_ = glued_before_ || item.glues || item.glued;
            return;
        }
        fix_.text += (item.glued || glued_before_ ? " " : item.before) + item.text;
        glued_before_ = item.glues;
        if (effect) {
            fix_.effects.push_back(*effect);
        }
    }

    // Whether there was anything to drop.
    bool DropHidden(std::string_view between) {
        const std::string hidden = HiddenIn(between);
        const bool drops = !hidden.empty() && between.front() == ' ' &&
                           filter_.Lets(check::CodeNamed("no-setting"));
        if (drops) {
            fix_.changes.push_back({"no-setting", hidden, ""});
        }
        return drops;
    }

    const check::CodeFilter& filter_;
    SettingsFix fix_;
    bool glued_before_ = false;
    const char* glue_ = nullptr;  // the code of several that are read as one
};

SettingsFix FixSettings(std::string_view settings, const check::CodeFilter& filter) {
    std::optional<SettingsFix> fixed = ListFixer(filter).Fix(settings);
    if (!fixed) {
        fixed.emplace();
        fixed->text = settings;
    }
    return std::move(*fixed);
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
