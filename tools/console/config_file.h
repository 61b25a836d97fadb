// Reads small files of settings.
#ifndef TOOLS_CONSOLE_CONFIG_FILE_H_
#define TOOLS_CONSOLE_CONFIG_FILE_H_

#include <string>
#include <vector>

namespace quill::console {

struct ConfigEntry {
    std::string name;  // "section.name" in a section
    std::vector<std::string> values;
};

// The entries of a file of lines such as `ignore = ["Q408", "Q3"]` or `ignore = Q408`; "#" begins a
// comment. Throws Failure when the file cannot be read.
std::vector<ConfigEntry> ReadConfigFile(const std::string& path);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_CONFIG_FILE_H_
