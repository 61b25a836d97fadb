#include "tools/console/config_file.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <fstream>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::console {

std::vector<ConfigEntry> ReadConfigFile(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        throw Failure(kExitUsage, path + ": " + ErrorText(errno));
    }
    std::vector<ConfigEntry> entries;
    for (const CLI::ConfigItem& item : CLI::ConfigTOML().from_config(file)) {
        if (item.name != "++" && item.name != "--") {  // which open and close a section
            entries.push_back({item.fullname(), item.inputs});
        }
    }
    return entries;
}

}  // namespace quill::console
