#include "tools/conform/suite.h"

#include <fnmatch.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tools/conform/cases/case_reader.h"
#include "tools/conform/probes.h"
#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::conform {
namespace {

// What a host meets first comes first.
constexpr const char* kGroups[] = {
    "descriptor", "layout", "handles",  "results",  "signature", "line-endings",
    "chunks",     "blocks", "times",    "settings", "numbers",   "markup",
    "headers",    "maps",   "delivery", "lifetime",
};

std::size_t RankOf(const Case& one) {
    const auto* const place = std::find(std::begin(kGroups), std::end(kGroups), one.group);
    return static_cast<std::size_t>(place - std::begin(kGroups));
}

bool Takes(const std::string& pattern, const Case& one) {
    return pattern == one.group || fnmatch(pattern.c_str(), one.full_name().c_str(), 0) == 0;
}

void Append(std::vector<Case> more, std::vector<Case>& cases) {
    cases.insert(cases.end(), std::make_move_iterator(more.begin()),
                 std::make_move_iterator(more.end()));
}

}  // namespace

std::vector<Case> BuiltInCases() {
    std::vector<Case> cases;
    Append(DescriptorProbes(), cases);
    Append(LayoutProbes(), cases);
    Append(HandleProbes(), cases);
    Append(ChunkProbes(), cases);
    Append(LifetimeProbes(), cases);
    for (const CaseFile& file : EmbeddedCases()) {
        Append(ReadCases(file.name, file.text), cases);
    }
    std::stable_sort(cases.begin(), cases.end(), [](const Case& one, const Case& other) {
        return RankOf(one) < RankOf(other);
    });
    return cases;
}

std::vector<Case> CasesOfFile(const std::string& path) {
    errno = 0;
    std::ifstream file(path);
    std::ostringstream text;
    if (!file || (!(text << file.rdbuf()) && errno != 0)) {
        throw console::Failure(console::kExitUsage,
                               "cannot read the cases " + path + ": " + console::ErrorText(errno));
    }
    return ReadCases(path, text.str());
}

std::vector<Case> SelectCases(std::vector<Case> cases, const std::vector<std::string>& patterns) {
    for (const std::string& pattern : patterns) {
        if (std::none_of(cases.begin(), cases.end(),
                         [&pattern](const Case& one) { return Takes(pattern, one); })) {
            throw console::Failure(console::kExitUsage,
                                   "no case matches \"" + pattern + "\" (--list shows them all)");
        }
    }
    const auto is_unwanted = [&patterns](const Case& one) {
        return std::none_of(patterns.begin(), patterns.end(),
                            [&one](const std::string& pattern) { return Takes(pattern, one); });
    };
    if (!patterns.empty()) {
        cases.erase(std::remove_if(cases.begin(), cases.end(), is_unwanted), cases.end());
    }
    return cases;
}

}  // namespace quill::conform
