// Which codes quill check reports.
#ifndef TOOLS_CHECK_CODE_FILTER_H_
#define TOOLS_CHECK_CODE_FILTER_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tools/check/codes.h"

namespace quill::check {

// Numbers of codes and beginnings of numbers: "Q408", "Q3".
using CodePrefixes = std::vector<std::string>;

// Adds those of a text in which commas divide them. Throws Failure for one that begins no code;
// `where` says who asks: "--select".
void AddPrefixes(const std::string& where, const std::string& text, CodePrefixes& prefixes);

// The longest prefix of a code decides on it, and of two alike the one that leaves it out. A code
// without any is reported when nothing was selected.
struct CodeFilter {
    bool Lets(const Code& code) const;

    CodePrefixes selected;
    CodePrefixes ignored;
};

// The filter of each track: what the command line says, else the file ".quillcheck" that lies
// nearest above the track.
class TrackFilters {
  public:
    TrackFilters(std::optional<CodePrefixes> selected, std::optional<CodePrefixes> ignored)
        : selected_(std::move(selected)), ignored_(std::move(ignored)) {}

    // `track` is a file, or "-" for standard input, which is taken to lie in the working folder.
    // The filter is valid until the next call. Throws Failure for a file that cannot be read, or
    // that says what is not understood.
    const CodeFilter& For(const std::string& track);

  private:
    std::optional<CodePrefixes> selected_;  // on the command line
    std::optional<CodePrefixes> ignored_;
    std::filesystem::path folder_;  // of the last track
    CodeFilter filter_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_CODE_FILTER_H_
