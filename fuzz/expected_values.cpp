#include "fuzz/expected_values.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace fuzz {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::size_t kSecondsSize = 6;

bool is_near(double value, double expected) {
    return std::fabs(value - expected) <= 1e-9 * (1.0 + std::fabs(expected));
}

/// Few enough digits on both sides of the point for 32 bits.
bool is_exact(std::string_view decimal) {
    const std::size_t point = std::min(decimal.find('.'), decimal.size());
    return point <= 9 && decimal.size() - point <= 10;
}

double seconds_of(std::string_view time) {
    return std::strtod(std::string(time.substr(time.size() - kSecondsSize)).c_str(), nullptr);
}

/// Everything before the colon that precedes the seconds.
std::string_view head_of(std::string_view time) {
    return time.substr(0, time.size() - kSecondsSize - 1);
}

}  // namespace

bool is_decimal(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos &&
           std::count(text.begin(), text.end(), '.') <= 1;
}

bool is_integer(std::string_view text) {
    return !text.empty() && text.find_first_not_of(kDigits) == std::string_view::npos;
}

bool is_percentage(std::string_view text) {
    return text.size() >= 2 && text.back() == '%' && is_decimal(text.substr(0, text.size() - 1));
}

bool is_time(std::string_view text) {
    if (text.size() <= kSecondsSize + 2 || text[text.size() - kSecondsSize - 1] != ':' ||
        !is_decimal(text.substr(text.size() - kSecondsSize)) || seconds_of(text) >= 60.0) {
        return false;
    }
    std::string_view head = head_of(text);
    const std::size_t colon = std::min(head.find(':'), head.size());
    const std::size_t behind = head.size() - colon;  // the colon included
    if (!is_integer(head.substr(0, colon)) || (behind > 1 && behind != 3)) {
        return false;
    }
    const std::string_view minutes = behind == 3 ? head.substr(colon + 1) : head.substr(0, colon);
    return is_integer(minutes) && expected_integer(minutes) <= 59;
}

unsigned expected_integer(std::string_view text) {
    if (!is_integer(text)) {
        return 0;
    }
    std::uint64_t value = 0;
    for (const char digit : text) {
        value = (value * 10 + kDigits.find(digit)) % (std::uint64_t{1} << 32);
    }
    return static_cast<unsigned>(value);
}

bool is_expected_decimal(std::string_view text, double value) {
    if (!is_decimal(text)) {
        return value == (text.empty() ? kUntouched : 0.0);
    }
    return !is_exact(text) || is_near(value, std::strtod(std::string(text).c_str(), nullptr));
}

bool is_expected_percentage(std::string_view text, double value) {
    if (!is_percentage(text)) {
        return value == 0.0;
    }
    return is_expected_decimal(text.substr(0, text.size() - 1), value);
}

bool is_expected_time(std::string_view text, double value) {
    const std::string_view head = head_of(text);
    const std::size_t colon = std::min(head.find(':'), head.size());
    const bool has_hours = head.size() - colon == 3;
    const std::uint32_t first = expected_integer(head.substr(0, colon));
    const std::uint32_t whole =
        has_hours ? first * 3600 + expected_integer(head.substr(colon + 1)) * 60 : first * 60;
    return is_near(value, whole + seconds_of(text));
}

}  // namespace fuzz
