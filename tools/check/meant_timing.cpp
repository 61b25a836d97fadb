#include "tools/check/meant_timing.h"

#include <algorithm>

#include "tools/check/characters.h"
#include "tools/check/meant_time.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The size of the time that the text begins with, by its form alone; 0 when there is none. A
// comma goes before the last digits only, as one between two times would.
std::size_t TimeSize(std::string_view text) {
    std::size_t end = 0;
    bool has_fraction = false;
    while (end < text.size()) {
        const std::size_t part = end == 0 ? 0 : end + 1;
        std::size_t digits = part;
        while (digits < text.size() && console::IsDigit(text[digits])) {
            ++digits;
        }
        if (digits == part) {
            break;
        }
        end = digits;
        if (end == text.size() ||
            std::string_view(":.;,").find(text[end]) == std::string_view::npos ||
            (text[end] == ',' && has_fraction)) {
            break;
        }
        has_fraction = has_fraction || text[end] == '.' || text[end] == ',';
    }
    return end;
}

bool HasThousandths(std::string_view time) {
    constexpr std::size_t kBehind = 4;
    return time.size() > kBehind &&
           std::string_view(".,").find(time[time.size() - kBehind]) != std::string_view::npos;
}

struct Parts {
    std::string_view start;
    std::string_view arrow;
    std::string_view end;
    std::string_view settings;
};

// With an arrow everything before it is the start.
std::optional<Parts> SplitAtArrow(std::string_view line, std::size_t arrow) {
    std::size_t begin = arrow;
    std::size_t end = arrow + kArrow.size();
    while (begin > 0 && std::string_view("-=<").find(line[begin - 1]) != std::string_view::npos) {
        --begin;
    }
    while (end < line.size() && std::string_view("->=").find(line[end]) != std::string_view::npos) {
        ++end;
    }
    const std::string_view rest = Trimmed(line.substr(end));
    const std::size_t size = TimeSize(rest);
    return Parts{Trimmed(line.substr(0, begin)), line.substr(begin, end - begin),
                 rest.substr(0, size), rest.substr(size)};
}

// Without one, anything short that stands between two times is one.
std::optional<Parts> SplitAtTimes(std::string_view line) {
    constexpr std::size_t kLongestArrow = 12;
    line = Trimmed(line);
    const std::size_t start = TimeSize(line);
    const std::size_t next =
        start == 0 ? std::string_view::npos : line.find_first_of("0123456789", start);
    if (next == std::string_view::npos || next - start > kLongestArrow) {
        return std::nullopt;
    }
    const std::string_view rest = line.substr(next);
    const std::size_t size = TimeSize(rest);
    const Parts parts = {line.substr(0, start), Trimmed(line.substr(start, next - start)),
                         rest.substr(0, size), rest.substr(size)};
    if (parts.start.find_first_of(":.") == std::string_view::npos ||
        parts.end.find_first_of(":.") == std::string_view::npos) {
        return std::nullopt;
    }
    return parts;
}

// A setting that was glued to the time, or stands behind it; a unit is none.
std::string Settings(std::string_view behind) {
    const std::size_t glued = std::min(behind.find(' '), behind.size());
    if (glued > 0 && behind.substr(0, glued).find(':') == std::string_view::npos) {
        behind.remove_prefix(glued);
    }
    const std::string_view settings = Trimmed(behind);
    return settings.empty() ? "" : " " + std::string(settings);
}

}  // namespace

std::optional<MeantTiming> ReadMeantTiming(std::string_view line) {
    const std::string plain = Plain(line);
    const std::size_t arrow = plain.find(kArrow);
    const std::optional<Parts> parts =
        arrow != std::string_view::npos ? SplitAtArrow(plain, arrow) : SplitAtTimes(plain);
    if (!parts) {
        return std::nullopt;
    }
    MeantTiming meant;
    meant.arrow = parts->arrow;
    meant.has_thousandths = HasThousandths(parts->start) && HasThousandths(parts->end);
    const std::string start = ReadMeantTime(parts->start).text;
    const std::string end = ReadMeantTime(parts->end).text;
    if (!start.empty() && !end.empty()) {
        meant.text = start + " --> " + end + Settings(parts->settings);
    }
    return meant;
}

}  // namespace quill::check
