#include "tools/fix/timing_reading.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "tools/console/text.h"
#include "tools/fix/characters.h"

namespace quill::fix {
namespace {

bool IsTimeCharacter(char c) {
    return console::IsDigit(c) || c == ':' || c == '.' || c == ',';
}

// Digits for 0, digits below 6 for 5.
constexpr std::string_view kMinutes = "50:50.000";
constexpr std::string_view kHours = "00:50:50.000";

bool Fits(std::string_view text, std::string_view shape) {
    return text.size() == shape.size() &&
           std::equal(text.begin(), text.end(), shape.begin(), [](char c, char wanted) {
               return wanted == '0'   ? console::IsDigit(c)
                      : wanted == '5' ? c >= '0' && c <= '5'
                                      : c == wanted;
           });
}

// The fields of a time, and the marks between them.
struct Fields {
    std::vector<std::string> numbers{""};
    std::string marks;
};

Fields SplitTime(std::string_view time) {
    Fields fields;
    for (const char c : time) {
        if (console::IsDigit(c)) {
            fields.numbers.back() += c;
        } else {
            fields.marks += c == ',' ? '.' : c;
            fields.numbers.emplace_back();
        }
    }
    return fields;
}

// The marks of "01.02.003", "00:00:01:003" and the like as they are meant: three digits can only be
// milliseconds. Without a fraction there is none.
bool StraightenMarks(Fields& fields) {
    const std::size_t fraction_digits = fields.numbers.back().size();
    if (fields.marks.empty() || fields.numbers.size() > 4) {
        return false;
    }
    const bool all_points = fields.marks.find(':') == std::string::npos;
    const bool all_colons = fields.marks.find('.') == std::string::npos;
    if ((all_points || fields.numbers.size() == 4) && all_points != all_colons) {
        if (fraction_digits != 3) {
            return false;
        }
        std::fill(fields.marks.begin(), fields.marks.end(), ':');
        fields.marks.back() = '.';
    }
    if (fields.marks.back() != '.') {
        fields.marks += '.';
        fields.numbers.emplace_back();
    }
    return fields.marks.find('.') == fields.marks.size() - 1 && fields.numbers.size() <= 4;
}

std::int64_t Milliseconds(std::string fraction) {
    fraction.resize(3, '0');
    return std::stoi(fraction);
}

// Fails for what is out of range, unless it can mean but one time: a minute of 60 seconds, and
// minutes that never had hours.
std::optional<std::int64_t> Sum(const std::vector<std::string>& numbers) {
    constexpr std::int64_t kMostHours = 1193045;  // what fits into 32 bits of seconds
    std::int64_t values[3] = {0, 0, 0};           // hours, minutes, seconds
    const std::size_t whole = numbers.size() - 1;
    for (std::size_t index = 0; index < whole; ++index) {
        const std::string& number = numbers[index];
        const bool is_first = index == 0;
        if (number.empty() || number.size() > (is_first ? 7u : 2u)) {
            return std::nullopt;
        }
        values[3 - whole + index] = std::stoi(number);
    }
    if (values[2] > 60 || (whole == 3 && values[1] > 59) || values[0] > kMostHours ||
        (whole == 1 && numbers.back().size() != 3)) {
        return std::nullopt;
    }
    return ((values[0] * 60 + values[1]) * 60 + values[2]) * 1000 + Milliseconds(numbers.back());
}

// Reads a time that begins there.
std::optional<WrittenTime> TimeAt(const Looks& looks, std::size_t begin, std::size_t& end) {
    const std::string& text = looks.text();
    end = begin;
    while (end < text.size() && IsTimeCharacter(text[end])) {
        ++end;
    }
    const std::string_view time = std::string_view(text).substr(begin, end - begin);
    Fields fields = SplitTime(time);
    if (end == begin || !StraightenMarks(fields)) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> sum = Sum(fields.numbers);
    if (!sum) {
        return std::nullopt;
    }
    return WrittenTime{looks.Begin(begin), looks.End(end - 1), *sum, fields.numbers.size() == 4,
                       time.find(',') != std::string_view::npos};
}

// A time of the usual shape that begins the text, read without looking at single characters.
std::optional<WrittenTime> UsualTimeAt(std::string_view line, std::size_t begin) {
    for (const std::string_view shape : {kHours, kMinutes}) {
        const std::string_view text = line.substr(std::min(begin, line.size()), shape.size());
        if (!Fits(text, shape)) {
            continue;
        }
        const bool has_hours = shape == kHours;
        const auto two_digits = [text](std::size_t at) -> std::int64_t {
            return (text[at] - '0') * 10 + (text[at + 1] - '0');
        };
        const std::size_t minutes = has_hours ? 3 : 0;
        const std::int64_t hours = has_hours ? two_digits(0) : 0;
        const std::int64_t seconds =
            (hours * 60 + two_digits(minutes)) * 60 + two_digits(minutes + 3);
        return WrittenTime{begin, begin + shape.size(),
                           seconds * 1000 + two_digits(minutes + 6) * 10 + (text.back() - '0'),
                           has_hours, false};
    }
    return std::nullopt;
}

// A timing line as nearly all are written.
std::optional<TimingReading> ReadUsualTiming(std::string_view line) {
    constexpr std::string_view kArrow = " --> ";
    const std::optional<WrittenTime> start = UsualTimeAt(line, 0);
    if (!start || line.substr(start->end, kArrow.size()) != kArrow) {
        return std::nullopt;
    }
    const std::optional<WrittenTime> end = UsualTimeAt(line, start->end + kArrow.size());
    if (!end ||
        (end->end < line.size() && (line[end->end] != ' ' || end->end + 1 == line.size() ||
                                    !(line[end->end + 1] >= 'a' && line[end->end + 1] <= 'z')))) {
        return std::nullopt;
    }
    return TimingReading{*start, start->end + 1, start->end + 4, *end,
                         std::min(end->end + 1, line.size())};
}

std::size_t SkipSpaces(const std::string& text, std::size_t at) {
    return std::min(text.find_first_not_of(' ', at), text.size());
}

// Behind the arrow that begins there: dashes, spaces between them, and a bracket. 0 for none.
std::size_t ArrowEnd(const std::string& text, std::size_t at) {
    at = std::min(text.find_first_not_of("-= ", at), text.size());
    if (text.compare(at, 4, "&gt;") == 0) {
        return at + 4;
    }
    const std::size_t end =
        std::min(text.find_first_not_of(std::string(">") + Looks::kArrow, at), text.size());
    return end > at ? end : 0;
}

// Whether what directly follows a time can only be a setting.
bool BeginsSetting(std::string_view text) {
    for (const char* const name : {"align", "line", "position", "region", "size", "vertical"}) {
        const std::string_view word = name;
        if (text.substr(0, word.size()) == word &&
            (text.substr(word.size(), 1) == ":" || text.substr(word.size(), 1) == "=")) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string WrittenTime::Canonical() const {
    const std::int64_t seconds = milliseconds / 1000;
    char text[40];
    if (has_hours || seconds >= 3600) {
        std::snprintf(text, sizeof(text), "%02d:%02d:%02d.%03d", static_cast<int>(seconds / 3600),
                      static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
                      static_cast<int>(milliseconds % 1000));
    } else {
        std::snprintf(text, sizeof(text), "%02d:%02d.%03d", static_cast<int>(seconds / 60),
                      static_cast<int>(seconds % 60), static_cast<int>(milliseconds % 1000));
    }
    return text;
}

std::optional<TimingReading> ReadTiming(std::string_view line) {
    // Cheap for lines of text, which begin with letters.
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos ||
        (!console::IsDigit(line[first]) && static_cast<unsigned char>(line[first]) < 0xC2)) {
        return std::nullopt;
    }
    if (const std::optional<TimingReading> usual = ReadUsualTiming(line)) {
        return usual;
    }
    const Looks looks(line);
    const std::string& text = looks.text();
    std::size_t at = 0;
    const std::optional<WrittenTime> start = TimeAt(looks, SkipSpaces(text, 0), at);
    if (!start) {
        return std::nullopt;
    }
    const std::size_t arrow = SkipSpaces(text, at);
    const std::size_t arrow_end = ArrowEnd(text, arrow);
    if (arrow_end == 0) {
        return std::nullopt;
    }
    const std::optional<WrittenTime> end = TimeAt(looks, SkipSpaces(text, arrow_end), at);
    if (!end || (at < text.size() && text[at] != ' ' && !BeginsSetting(text.substr(at)))) {
        return std::nullopt;
    }
    return TimingReading{*start, looks.Begin(arrow), looks.End(arrow_end - 1), *end,
                         looks.Begin(SkipSpaces(text, at))};
}

std::optional<WrittenTime> ReadTime(std::string_view text) {
    const Looks looks(text);
    std::size_t end = 0;
    const std::optional<WrittenTime> time = TimeAt(looks, SkipSpaces(looks.text(), 0), end);
    return time && SkipSpaces(looks.text(), end) == looks.text().size() ? time : std::nullopt;
}

bool IsUsualTime(std::string_view text) {
    return Fits(text, kMinutes) || Fits(text, kHours);
}

}  // namespace quill::fix
