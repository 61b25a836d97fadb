// Numbers, times, settings and header values. An input is the text that each of them is read from.
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "fuzz/expected_values.h"
#include "fuzz/mutator.h"
#include "fuzz/parsed_settings.h"
#include "support/exact_block.h"

namespace {

using webvtt::WebvttString;

void check_numbers(const WebvttString& text) {
    double number = fuzz::kUntouched;
    FUZZ_CHECK(text.str_to_double(number) == fuzz::is_decimal(text.text));
    FUZZ_CHECK(fuzz::is_expected_decimal(text.text, number));

    double percentage = fuzz::kUntouched;
    FUZZ_CHECK(text.get_percentage(percentage) == fuzz::is_percentage(text.text));
    FUZZ_CHECK(fuzz::is_expected_percentage(text.text, percentage));

    unsigned int integer = 1;
    FUZZ_CHECK(text.str_to_uint(integer) == fuzz::is_integer(text.text));
    FUZZ_CHECK(integer == fuzz::expected_integer(text.text));

    unsigned long ticks = 1;
    FUZZ_CHECK(text.str_to_ulong(ticks) == fuzz::is_integer(text.text));
    FUZZ_CHECK(ticks == fuzz::expected_integer(text.text));
}

void check_anchor_point(const WebvttString& text) {
    double x = fuzz::kUntouched;
    double y = fuzz::kUntouched;
    const std::size_t comma = text.text.find(',');
    const bool has_two = comma != std::string::npos && comma != 0 && comma + 1 != text.text.size();
    FUZZ_CHECK(text.get_anchorpoint(x, y) == has_two);
    if (has_two) {
        FUZZ_CHECK(fuzz::is_expected_percentage(text.text.substr(0, comma), x));
        FUZZ_CHECK(fuzz::is_expected_percentage(text.text.substr(comma + 1), y));
    } else {
        FUZZ_CHECK(x == fuzz::kUntouched && y == fuzz::kUntouched);
    }
}

void check_time(const WebvttString& text) {
    double time = fuzz::kUntouched;
    const bool is_valid = text.get_timestamp(time);
    FUZZ_CHECK(is_valid == fuzz::is_time(text.text));
    if (is_valid) {
        FUZZ_CHECK(fuzz::is_expected_time(text.text, time));
    } else {
        FUZZ_CHECK(time == fuzz::kUntouched || time == 0.0);
    }
}

void check_string(const WebvttString& text) {
    WebvttString trimmed(text);
    trimmed.trim();
    FUZZ_CHECK(text.does_contain(trimmed));
    FUZZ_CHECK(trimmed.is_empty() || (trimmed.text.front() != ' ' && trimmed.text.back() != ' '));

    const WebvttString arrow("-->");
    const WebvttString head = text.get_first_substr_before(arrow);
    FUZZ_CHECK(!head.does_contain(arrow));
    FUZZ_CHECK(text.does_contain(arrow) == (head.text != text.text));
    FUZZ_CHECK(text.text.compare(0, head.text.size(), head.text) == 0);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t largest, unsigned seed) {
    return fuzz::mutate(fuzz::Format::kValue, data, size, largest, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const WebvttString text(input);
    check_numbers(text);
    check_anchor_point(text);
    check_time(text);
    check_string(text);
    fuzz::check_timing_line(input);
    fuzz::check_setting(input);
    fuzz::check_region(input);
    fuzz::check_map(input);
    return 0;
}
