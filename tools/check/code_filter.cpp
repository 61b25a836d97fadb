#include "tools/check/code_filter.h"

#include <algorithm>
#include <sstream>
#include <system_error>

#include "tools/console/config_file.h"
#include "tools/console/failure.h"
#include "tools/console/suggestion.h"

namespace quill::check {
namespace {

namespace fs = std::filesystem;

constexpr char kFileName[] = ".quillcheck";

bool IsPrefixOf(const std::string& prefix, const Code& code) {
    return std::string_view(code.number).substr(0, prefix.size()) == prefix;
}

// The length of the longest one that the code begins with; 0 when there is none.
std::size_t LongestOf(const CodePrefixes& prefixes, const Code& code) {
    std::size_t longest = 0;
    for (const std::string& prefix : prefixes) {
        longest = std::max(longest, IsPrefixOf(prefix, code) ? prefix.size() : 0);
    }
    return longest;
}

// Empty when there is no such file in the folder or above it.
fs::path FindFile(fs::path folder) {
    for (;;) {
        std::error_code ignored;
        if (fs::exists(folder / kFileName, ignored)) {
            return folder / kFileName;
        }
        if (!folder.has_relative_path()) {
            return {};
        }
        folder = folder.parent_path();
    }
}

CodeFilter ReadFile(const std::string& path) {
    CodeFilter filter;
    for (const console::ConfigEntry& entry : console::ReadConfigFile(path)) {
        if (entry.name != "select" && entry.name != "ignore") {
            throw console::Failure(console::kExitUsage,
                                   path + ": it may say select and ignore, not \"" + entry.name +
                                       '"' + console::Suggest(entry.name, {"select", "ignore"}));
        }
        CodePrefixes& prefixes = entry.name == "select" ? filter.selected : filter.ignored;
        for (const std::string& value : entry.values) {
            AddPrefixes(path + ": " + entry.name, value, prefixes);
        }
    }
    return filter;
}

}  // namespace

void AddPrefixes(const std::string& where, const std::string& text, CodePrefixes& prefixes) {
    std::istringstream items(text);
    for (std::string item; std::getline(items, item, ',');) {
        if (item.empty() || std::none_of(Codes(), Codes() + CodeCount(), [&](const Code& code) {
                return IsPrefixOf(item, code);
            })) {
            std::string message = where;
            message += " takes codes and beginnings of codes, such as Q408 and Q3, not \"";
            message += item + '"' + SuggestCode(item);
            throw console::Failure(console::kExitUsage, message);
        }
        prefixes.push_back(item);
    }
}

bool CodeFilter::Lets(const Code& code) const {
    const std::size_t selects = LongestOf(selected, code);
    const std::size_t ignores = LongestOf(ignored, code);
    return selects == 0 && ignores == 0 ? selected.empty() : selects > ignores;
}

const CodeFilter& TrackFilters::For(const std::string& track) {
    const fs::path folder = fs::absolute(track == "-" ? "." : track).parent_path();
    if (folder != folder_) {
        const fs::path file = selected_ && ignored_ ? fs::path() : FindFile(folder);
        filter_ = file.empty() ? CodeFilter() : ReadFile(file.string());
        filter_.selected = selected_.value_or(filter_.selected);
        filter_.ignored = ignored_.value_or(filter_.ignored);
        folder_ = folder;
    }
    return filter_;
}

}  // namespace quill::check
