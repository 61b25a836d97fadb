#include "support/session_log.h"

#include <algorithm>

namespace support::session_log {
namespace {

constexpr unsigned kFirstOfTwo = 0x80;  // from here on UTF-8 takes two bytes
constexpr unsigned kLeadOfTwo = 0xC0;
constexpr unsigned kLowBits = 0x3F;

}  // namespace

std::optional<Verb> verb_of(std::string_view name) {
    const auto* const found = std::find(kVerbs.begin(), kVerbs.end(), name);
    if (found == kVerbs.end()) {
        return std::nullopt;
    }
    return static_cast<Verb>(found - kVerbs.begin());
}

std::string byte_string(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const unsigned code = static_cast<unsigned char>(byte);
        if (code < kFirstOfTwo) {
            text += byte;
        } else {
            text += static_cast<char>(kLeadOfTwo | (code >> 6U));
            text += static_cast<char>(kFirstOfTwo | (code & kLowBits));
        }
    }
    return text;
}

std::optional<std::string> bytes_of(std::string_view byte_string) {
    std::string bytes;
    for (std::size_t at = 0; at < byte_string.size(); ++at) {
        const unsigned lead = static_cast<unsigned char>(byte_string[at]);
        if (lead < kFirstOfTwo) {
            bytes += byte_string[at];
            continue;
        }
        // U+0080 to U+00FF begin with C2 or C3.
        if ((lead != kLeadOfTwo + 2 && lead != kLeadOfTwo + 3) || at + 1 == byte_string.size()) {
            return std::nullopt;
        }
        const unsigned rest = static_cast<unsigned char>(byte_string[++at]);
        bytes += static_cast<char>((lead << 6U) | (rest & kLowBits));
    }
    return bytes;
}

}  // namespace support::session_log
