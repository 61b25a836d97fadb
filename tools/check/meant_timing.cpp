#include "tools/check/meant_timing.h"

#include <algorithm>

#include "tools/check/characters.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

constexpr std::string_view kSpacedArrow = " --> ";

// Without the spaces at both ends.
Place Trimmed(std::string_view text, Place place) {
    while (place.begin < place.end && text[place.begin] == ' ') {
        ++place.begin;
    }
    while (place.begin < place.end && text[place.end - 1] == ' ') {
        --place.end;
    }
    return place;
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

// The times and the arrow in the line's plain text. All behind them is settings.
struct Parts {
    Place start;
    Place arrow;
    Place end;
};

// The size of the time that the text begins with, and of what says there which time it is.
std::size_t LabelledTimeSize(std::string_view text) {
    const std::size_t label = TimeLabelSize(text);
    const std::size_t time = TimeSize(text.substr(label));
    return time == 0 ? 0 : label + time;
}

// The time that begins there, with a unit that is glued to it; a setting may be glued to it, too.
Place EndTime(std::string_view plain, std::size_t begin) {
    begin = std::min(plain.find_first_not_of(' ', begin), plain.size());
    const std::size_t end = begin + LabelledTimeSize(plain.substr(begin));
    const std::size_t glued = std::min(plain.find(' ', end), plain.size());
    const bool is_setting = plain.substr(end, glued - end).find(':') != std::string_view::npos;
    return {begin, is_setting ? end : glued};
}

// With an arrow everything before it is the start.
Parts SplitAtArrow(std::string_view plain, std::size_t arrow) {
    std::size_t begin = arrow;
    std::size_t end = arrow + kArrow.size();
    while (begin > 0 && std::string_view("-=<").find(plain[begin - 1]) != std::string_view::npos) {
        --begin;
    }
    while (end < plain.size() &&
           std::string_view("->=").find(plain[end]) != std::string_view::npos) {
        ++end;
    }
    return {Trimmed(plain, {0, begin}), {begin, end}, EndTime(plain, end)};
}

// Without one, anything short that stands between two times is one.
std::optional<Parts> SplitAtTimes(std::string_view plain) {
    constexpr std::size_t kLongestArrow = 12;
    const std::size_t begin = std::min(plain.find_first_not_of(' '), plain.size());
    const std::size_t start = begin + LabelledTimeSize(plain.substr(begin));
    const std::size_t next =
        start == begin ? std::string_view::npos : plain.find_first_of("0123456789", start);
    if (next == std::string_view::npos || next - start > kLongestArrow) {
        return std::nullopt;
    }
    const Parts parts = {{begin, start}, Trimmed(plain, {start, next}), EndTime(plain, next)};
    const std::size_t label = TimeLabelSize(plain.substr(begin));
    if (parts.start.In(plain).find_first_of(":.", label) == std::string_view::npos ||
        parts.end.In(plain).find_first_of(":.") == std::string_view::npos) {
        return std::nullopt;
    }
    return parts;
}

// Whether what stands behind the times can only be settings, or what players ignore.
bool BeginsSettings(std::string_view settings) {
    const std::size_t end = settings.find_first_of(":=");
    const std::string_view name = settings.substr(0, end);
    return end != std::string_view::npos && !name.empty() &&
           name.find_first_not_of(
               "abcdefghijklmnopqrstuvwxyz"
               "ABCDEFGHIJKLMNOPQRSTUVWXYZ ") == std::string_view::npos;
}

// Whether nobody can have meant anything else by what stands between two times, and behind them.
bool IsCertain(std::string_view arrow, std::string_view settings, bool is_glued,
               bool has_thousandths) {
    if (settings.empty() || BeginsSettings(settings)) {
        const bool has_head = arrow.find_first_not_of("-=> ") == std::string_view::npos &&
                              !arrow.empty() && arrow.find('>') != std::string_view::npos;
        return has_head || arrow == "--&gt;" || has_thousandths;
    }
    return !is_glued && arrow.find(kArrow) != std::string_view::npos &&
           !console::IsDigit(settings[0]) &&
           std::string_view(".,:;").find(settings[0]) == std::string_view::npos;
}

// A timing line as nearly all are written, perhaps with decimal commas.
std::optional<MeantTiming> ReadUsualTiming(std::string_view line) {
    const std::size_t start = UsualTimeSize(line);
    if (start == 0 || line.substr(start, kSpacedArrow.size()) != kSpacedArrow) {
        return std::nullopt;
    }
    const std::size_t begin = start + kSpacedArrow.size();
    const std::size_t end = begin + UsualTimeSize(line.substr(begin));
    const std::string_view behind = line.substr(end);
    const bool has_settings = behind.size() > 1 && behind[0] == ' ' && behind[1] >= 'a' &&
                              behind[1] <= 'z' && BeginsSettings(behind.substr(1));
    if (end == begin || (!behind.empty() && !has_settings)) {
        return std::nullopt;
    }
    MeantTiming meant{};
    meant.start_place = {0, start};
    meant.arrow_place = {start + 1, begin - 1};
    meant.end_place = {begin, end};
    meant.settings_begin = has_settings ? end + 1 : end;
    meant.start = ReadMeantTime(line.substr(0, start));
    meant.end = ReadMeantTime(meant.end_place.In(line));
    meant.arrow = kArrow;
    meant.text = meant.start.text + std::string(kSpacedArrow) + meant.end.text;
    meant.text += behind;
    meant.has_thousandths = true;
    meant.is_certain = true;
    return meant;
}

}  // namespace

std::optional<MeantTiming> ReadMeantTiming(std::string_view line) {
    if (std::optional<MeantTiming> usual = ReadUsualTiming(line)) {
        return usual;
    }
    constexpr std::size_t kShortest = 4;  // an arrow, and a digit
    if (line.size() < kShortest) {
        return std::nullopt;
    }
    const PlainText looks(line);
    const std::string_view plain = looks.text();
    const std::size_t arrow = plain.find(kArrow);
    const std::optional<Parts> parts =
        arrow != std::string_view::npos ? SplitAtArrow(plain, arrow) : SplitAtTimes(plain);
    if (!parts) {
        return std::nullopt;
    }
    const auto place = [&looks](const Place& of_plain) {
        const std::size_t begin = looks.Begin(of_plain.begin);
        return Place{begin, std::max(begin, looks.End(of_plain.end))};
    };
    const Place settings = Trimmed(plain, {parts->end.end, plain.size()});
    MeantTiming meant{};
    meant.start_place = place(parts->start);
    meant.arrow_place = place(parts->arrow);
    meant.end_place = place(parts->end);
    meant.settings_begin = looks.Begin(settings.begin);
    meant.start = ReadMeantTime(meant.start_place.In(line));
    meant.end = ReadMeantTime(meant.end_place.In(line));
    meant.arrow = meant.arrow_place.In(line);
    meant.has_thousandths =
        HasThousandths(parts->start.In(plain)) && HasThousandths(parts->end.In(plain));
    if (!meant.start.text.empty() && !meant.end.text.empty()) {
        meant.text = meant.start.text + std::string(kSpacedArrow) + meant.end.text;
        meant.text += settings.begin < settings.end ? " " : "";
        meant.text += settings.In(plain);
        meant.is_certain = meant.start.is_certain && meant.end.is_certain &&
                           IsCertain(parts->arrow.In(plain), settings.In(plain),
                                     settings.begin == parts->end.end, meant.has_thousandths);
    }
    return meant;
}

bool IsSettingName(std::string_view name) {
    constexpr const char* kNames[] = {"align", "line", "position", "region", "size", "vertical"};
    return std::any_of(std::begin(kNames), std::end(kNames), [name](std::string_view known) {
        return name.size() == known.size() && console::BeginsWithAnyCase(name, known);
    });
}

std::string_view TextAmongSettings(std::string_view settings, std::size_t fewest_words) {
    const std::size_t text = std::min(settings.find_first_not_of(' '), settings.size());
    std::size_t words = 0;
    for (std::size_t at = text; at < settings.size(); ++words) {
        const std::size_t end = std::min(settings.find(' ', at), settings.size());
        const std::string_view item = settings.substr(at, end - at);
        const std::size_t mark = std::min(item.find_first_of(":="), item.size());
        // "Bob:" is one who speaks.
        if (mark + 1 < item.size() || IsSettingName(item.substr(0, mark)) ||
            item.find_first_not_of("0123456789.,:;%-") == std::string_view::npos) {
            return {};
        }
        at = std::min(settings.find_first_not_of(' ', end), settings.size());
    }
    return words >= fewest_words ? settings.substr(text) : std::string_view();
}

bool IsUsualTiming(std::string_view line) {
    const std::size_t start = UsualTimeSize(line);
    return start > 0 && line.substr(start, kSpacedArrow.size()) == kSpacedArrow &&
           UsualTimeSize(line.substr(start + kSpacedArrow.size())) ==
               line.size() - start - kSpacedArrow.size() &&
           line.find(',') == std::string_view::npos;
}

}  // namespace quill::check
