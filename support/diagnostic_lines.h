// The lines of the module's diagnostics, as tests expect them.
#pragma once

#include <initializer_list>
#include <string>

namespace support {

/// "[WEBVTT] ERR:: ", the message, a line feed.
inline std::string error_line(const std::string& message) {
    return "[WEBVTT] ERR:: " + message + "\n";
}

/// Several such lines.
inline std::string error_lines(std::initializer_list<const char*> messages) {
    std::string lines;
    for (const char* message : messages) {
        lines += error_line(message);
    }
    return lines;
}

/// What an entry point prints for a handle that is not live.
inline std::string handle_line(const std::string& entry_point) {
    return "[WEBVTT API:" + entry_point + "] handle MUST not be NULL\n";
}

}  // namespace support
