// What the module prints, as far as quill check goes by it. A test looks each text up in the
// module.
#ifndef TOOLS_CHECK_MODULE_WORDS_H_
#define TOOLS_CHECK_MODULE_WORDS_H_

#include <optional>
#include <string_view>

namespace quill::check {

inline bool Says(std::string_view printed, std::string_view words) {
    return printed.find(words) != std::string_view::npos;
}

// What stands between the two texts; nothing when they are not there.
std::optional<std::string_view> Between(std::string_view printed, std::string_view before,
                                        std::string_view behind);

namespace words {

// A block that gave its chunk up when it was the first to end there, and one that just failed.
constexpr std::string_view kError = "Error occured at LINE ";
constexpr std::string_view kFailed = "Cue Parse Failed!";

// The time stands between the bracket and ">" at the end of the line.
constexpr std::string_view kStartTime = "Invalid Start Time Stamp <";
constexpr std::string_view kEndTime = "Invalid End Time Stamp <";
constexpr std::string_view kInput = "Invalid Input String of ";
constexpr std::string_view kSecondLine = "Invalid Input String of 2nd Line";
constexpr std::string_view kNoTimingLine = "Parse Cue Time and Settings Failed";

constexpr std::string_view kEmptySetting = " value is empty!";
constexpr std::string_view kSettingRange = " out of range [0.0, 100.0]";

// The tag stands between the bracket and kTagEnd.
constexpr std::string_view kStartTag = "unexcepted start tag <";
constexpr std::string_view kEndTag = "unexcepted end tag <";
constexpr std::string_view kTimeTag = "Invalid time stamp tag <";
constexpr std::string_view kTagEnd = "> detected. Ignored";

// The first of the two begins every complaint about a map.
constexpr std::string_view kMap = "Invalid X-TIMESTAMP-MAP Meta Header ";
constexpr std::string_view kMapValue = "Invalid X-TIMESTAMP-MAP Meta Header Value!";

}  // namespace words
}  // namespace quill::check

#endif  // TOOLS_CHECK_MODULE_WORDS_H_
