#include "base/webvtt_string.h"

#include "base/text.h"
#include "base/value_parsers.h"

namespace webvtt {

WebvttString& WebvttString::trim() {
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    return *this;
}

bool WebvttString::does_contain(const WebvttString& other) const {
    return contains(text, other.text);
}

WebvttString WebvttString::get_first_substr_before(const WebvttString& delimiter) const {
    return WebvttString(split_first(text, delimiter.text).head);
}

bool WebvttString::str_to_double(double& out) const {
    return parse_double(text, out);
}

bool WebvttString::get_percentage(double& out) const {
    return parse_percentage(text, out);
}

bool WebvttString::str_to_uint(unsigned int& out) const {
    return parse_uint(text, out);
}

bool WebvttString::str_to_ulong(unsigned long& out) const {
    return parse_ulong(text, out);
}

bool WebvttString::get_anchorpoint(double& x, double& y) const {
    return parse_anchorpoint(text, x, y);
}

bool WebvttString::get_timestamp(double& out) const {
    return parse_timestamp(text, out);
}

}  // namespace webvtt
