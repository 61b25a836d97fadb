#include "tools/report/base64.h"

#include <cstddef>
#include <cstdint>

namespace quill::report {

std::string Base64(std::string_view bytes) {
    static constexpr char kDigits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t kGroup = 3;
    std::string text;
    text.reserve((bytes.size() + kGroup - 1) / kGroup * 4);
    for (std::size_t begin = 0; begin < bytes.size(); begin += kGroup) {
        std::uint32_t bits = 0;
        for (std::size_t index = begin; index < begin + kGroup; ++index) {
            bits =
                bits << 8u | (index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0u);
        }
        const std::size_t held = bytes.size() - begin;
        for (std::size_t digit = 0; digit < 4; ++digit) {
            text += digit <= held ? kDigits[bits >> (18 - 6 * digit) & 63u] : '=';
        }
    }
    return text;
}

}  // namespace quill::report
