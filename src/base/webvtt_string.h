// The string type of the module's interfaces.
#pragma once

#include <string>
#include <string_view>

#include "base/target.h"

namespace webvtt {

/// A byte string with a few text operations; a plain value. Bytes are never interpreted: UTF-8
/// passes through, and every comparison is exact. The text is public on purpose, for the rest of
/// the module reads and changes it with std::string's own operations.
class WebvttString {
  public:
    std::string text;

    WebvttString() = default;
    WebvttString(const std::string& other) : text(other) {}
    /// @param other zero-terminated, not null.
    WebvttString(const char* other) : text(other) {}
    explicit WebvttString(std::string_view other) : text(other) {}

    /// Removes leading and trailing spaces (0x20 only; tabs and line ends stay), returns itself.
    WebvttString& trim();

    /// Whether other occurs anywhere in the text; an empty one always does.
    bool does_contain(const WebvttString& other) const;

    /// Whether the text has length 0; a text of spaces has not.
    bool is_empty() const { return text.empty(); }

    /// The text before the first delimiter; the whole text when there is none, an empty one when
    /// the delimiter is empty.
    WebvttString get_first_substr_before(const WebvttString& delimiter) const;

    // The value parsers, on the whole text; base/value_parsers.h says what each accepts.
    bool str_to_double(double& out) const;
    bool get_percentage(double& out) const;
    bool str_to_uint(unsigned int& out) const;
    bool str_to_ulong(unsigned long& out) const;
    bool get_anchorpoint(double& x, double& y) const;
    bool get_timestamp(double& out) const;
};

}  // namespace webvtt
