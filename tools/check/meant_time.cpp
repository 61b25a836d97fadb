#include "tools/check/meant_time.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "tools/check/characters.h"
#include "tools/check/finding.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

constexpr std::size_t kNowhere = std::string_view::npos;
constexpr std::string_view kDigits = "0123456789";
constexpr std::size_t kFractionDigits = 3;
constexpr std::string_view kOpening = "[({<\"'";
constexpr std::string_view kClosing = "])}>\"'";
constexpr const char* kLabels[] = {"begin", "start", "from", "in", "end", "stop", "to", "out"};

// Digits for 0, digits below 6 for 5, a point or a comma for ".".
constexpr std::string_view kMinutes = "50:50.000";
constexpr std::string_view kHours = "00:50:50.000";

bool Fits(std::string_view text, std::string_view shape) {
    return text.size() >= shape.size() &&
           std::equal(shape.begin(), shape.end(), text.begin(), [](char wanted, char c) {
               return wanted == '0'   ? console::IsDigit(c)
                      : wanted == '5' ? c >= '0' && c <= '5'
                      : wanted == '.' ? c == '.' || c == ','
                                      : c == wanted;
           });
}

// Of a time that is written as it is to be read.
std::int64_t MillisecondsOf(std::string_view time) {
    std::int64_t fields[2] = {0, 0};  // what came before the last colon, and behind it
    for (const char c : time) {
        if (c == ':') {
            fields[0] = (fields[0] + fields[1]) * 60;
            fields[1] = 0;
        } else if (console::IsDigit(c)) {
            fields[1] = fields[1] * 10 + (c - '0');
        } else {
            fields[0] = fields[0] + fields[1];
            fields[1] = 0;
        }
    }
    return fields[0] * 1000 + fields[1];
}

// One as nearly all are written.
MeantTime ReadUsualTime(std::string_view time) {
    MeantTime meant;
    meant.text = time;
    char& point = meant.text[time.size() - 4];
    meant.has_comma = point == ',';
    point = '.';
    meant.complaint = meant.has_comma ? "it has a decimal comma" : "";
    meant.is_certain = true;
    meant.milliseconds = MillisecondsOf(meant.text);
    return meant;
}

std::string Digits(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " digit" : " digits");
}

// Reads one time step by step, each step one kind of fault.
class Reader {
  public:
    explicit Reader(std::string_view time) : time_(Plain(time)) {
        if (time.empty()) {
            Note("there is none");
        }
        NoteLookAlikes(time);
        RemoveLabel();
        RemoveNumber();
        NoteSpaces();
    }

    MeantTime Run() {
        ReadUnits();
        const bool is_known = is_one_ && RemoveSurroundings() && CutFraction() && CutParts() &&
                              ReadSeconds() && ReadMinutes();
        if (is_known) {
            for (const std::string& part : parts_) {
                meant_.text += part + (&part == &parts_.back() ? "." : ":");
            }
            meant_.text += fraction_;
            meant_.milliseconds = MillisecondsOf(meant_.text);
            meant_.is_certain = is_certain_ && meant_.milliseconds <= kMostMilliseconds;
        }
        return std::move(meant_);
    }

  private:
    static constexpr std::int64_t kMostMilliseconds =
        1193046ll * 3600 * 1000;  // 32 bits of seconds

    void Note(const std::string& complaint) {
        if (meant_.complaint.empty()) {
            meant_.complaint = complaint;
        }
    }

    void NoteLookAlikes(std::string_view time) {
        if (const LookAlike* const found = FindLookAlike(time)) {
            has_look_alike_ = true;
            Note(NameOf(found->code_point) + " stands in it");
        }
    }

    void RemoveLabel() {
        if (const std::size_t label = TimeLabelSize(time_)) {
            const std::string_view words = std::string_view(time_).substr(0, label);
            Note(Quoted(words.substr(0, words.find_last_not_of(' ') + 1)) + " stands before it");
            time_.erase(0, label);
        }
    }

    // "1: 00:01.000" is a number before a time, or a time with an hour.
    void RemoveNumber() {
        const std::size_t mark = std::min(time_.find_first_not_of(kDigits), time_.size());
        const std::size_t begin = std::min(time_.find_first_not_of(' ', mark + 1), time_.size());
        const std::size_t usual = UsualTimeSize(std::string_view(time_).substr(begin));
        if (mark > 0 && begin > mark + 1 && time_[mark] != ' ' && usual > 0 &&
            usual == time_.size() - begin) {
            Note(Quoted(time_.substr(0, mark + 1)) + " stands before it");
            time_.erase(0, begin);
            is_certain_ = false;
        }
    }

    void NoteSpaces() {
        if (time_.find(' ') != std::string::npos &&
            time_.find_first_of(kDigits) != std::string::npos) {
            Note(NameOf(' ') + " stands in it");
        }
        // Two numbers would become one.
        for (std::size_t at = time_.find(' '); at < time_.size(); at = time_.find(' ', at)) {
            const std::size_t end = std::min(time_.find_first_not_of(' ', at), time_.size());
            is_one_ = is_one_ && !(at > 0 && console::IsDigit(time_[at - 1]) &&
                                   end < time_.size() && console::IsDigit(time_[end]));
            at = end;
        }
        time_.erase(std::remove(time_.begin(), time_.end(), ' '), time_.end());
    }

    // "1h02m03.000s"
    void ReadUnits() {
        std::string parted = time_;
        parted.resize(parted.size() - (!parted.empty() && parted.back() == 's' ? 1 : 0));
        const std::size_t minutes = parted.find('m');
        if (minutes == std::string::npos || parted.find(':') != std::string::npos) {
            return;
        }
        parted[minutes] = ':';
        const std::size_t hours = std::min(parted.find('h'), minutes);
        parted[hours] = ':';
        if (parted.find_first_not_of("0123456789:.,") == std::string::npos) {
            Note("letters stand for its colons");
            time_ = parted;
        }
    }

    // Leaves digits and what parts them.
    bool RemoveSurroundings() {
        if (time_.size() > 1 && time_[0] == '-' && console::IsDigit(time_[1])) {
            Note("it is negative");
            return false;
        }
        const std::size_t last = time_.find_last_not_of(",;");
        if (last != kNowhere && last + 1 < time_.size() && time_.find_first_of(".,") < last) {
            Note(Quoted(time_.substr(last + 1)) + " stands behind it");
            time_.resize(last + 1);
        }
        const std::size_t end = std::min(time_.find_first_not_of("0123456789:.,;"), time_.size());
        if (end == 0) {
            return false;
        }
        if (end < time_.size()) {
            const std::string behind = time_.substr(end);
            is_certain_ =
                is_certain_ && (behind == "s" || behind == "S" ||
                                (behind.size() == 1 && kClosing.find(behind) != kNowhere));
            const bool is_setting =
                behind.find(':') != std::string::npos && behind[0] >= 'A' && behind[0] <= 'z';
            Note(is_setting ? "no space stands between it and " + Quoted(behind)
                            : Quoted(behind) + " stands behind it");
            if (!is_setting && behind.find_first_of(kDigits) != std::string::npos) {
                return false;  // a time in another form
            }
        }
        time_.resize(end);
        return true;
    }

    // The milliseconds.
    bool CutFraction() {
        const auto count = [this](char c) { return std::count(time_.begin(), time_.end(), c); };
        const auto colons = count(':');
        if (count(',') == 1 && count('.') == 0) {
            meant_.has_comma = !has_look_alike_;
            Note("it has a decimal comma");
            std::replace(time_.begin(), time_.end(), ',', '.');
        }
        if (count(',') > 0 || count(';') > 0) {
            Note(count(';') == 1 && colons == 2 ? "frames stand in place of its milliseconds" : "");
            return false;
        }
        const std::size_t last = time_.find_last_of(":.");
        const std::size_t behind = last == std::string::npos ? 0 : time_.size() - last - 1;
        if (count('.') > 1 && time_[last] == '.') {
            Note("a point stands where a colon belongs");
            is_certain_ = is_certain_ && behind == kFractionDigits;
            std::replace(time_.begin(), time_.begin() + static_cast<std::ptrdiff_t>(last), '.',
                         ':');
        } else if (count('.') == 0 && behind == kFractionDigits) {
            Note("a colon stands before the milliseconds");
            is_certain_ = is_certain_ && colons == 3;
            time_[last] = '.';
        } else if (count('.') == 0 && colons == 3) {
            Note("frames stand in place of its milliseconds");
            return false;
        }
        const std::size_t point = std::min(time_.find('.'), time_.size());
        fraction_ = time_.substr(std::min(point + 1, time_.size()));
        has_thousandths_ = fraction_.size() == kFractionDigits;
        time_.resize(point);
        if (fraction_.empty()) {
            Note("it has no milliseconds");
        } else if (fraction_.size() != kFractionDigits) {
            Note("it has " + Digits(fraction_.size()) + " behind the point, not three");
        }
        fraction_.resize(kFractionDigits, '0');
        return fraction_.find_first_not_of(kDigits) == std::string::npos;
    }

    // Hours, minutes and seconds.
    bool CutParts() {
        constexpr std::size_t kMostDigits = 9;
        std::size_t begin = 0;
        while (begin <= time_.size()) {
            const std::size_t end = std::min(time_.find(':', begin), time_.size());
            parts_.push_back(time_.substr(begin, end - begin));
            begin = end + 1;
        }
        const auto is_bad = [](const std::string& part) {
            return part.empty() || part.size() > kMostDigits;
        };
        if (std::any_of(parts_.begin(), parts_.end(), is_bad)) {
            return false;
        }
        if (parts_.size() == 1) {
            Note("it has no minutes");
            is_certain_ = is_certain_ && has_thousandths_;
            parts_.insert(parts_.begin(), "00");
        }
        if (parts_.size() == 4) {
            Note("it has four parts before the point, not three at the most");
            if (std::stoi(parts_[0]) != 0) {
                return false;
            }
            parts_.erase(parts_.begin());
        }
        return parts_.size() <= 3;
    }

    bool ReadSeconds() { return ReadPart("seconds", parts_.size() - 1); }
    bool ReadMinutes() { return ReadPart("minutes", parts_.size() - 2); }

    // Two digits up to 59; what is more is carried on.
    bool ReadPart(const std::string& name, std::size_t index) {
        constexpr int kMost = 59;
        if (parts_[index].size() < 2) {
            Note("its " + name + " have 1 digit, not two");
        }
        const int value = std::stoi(parts_[index]);
        if (value > kMost) {
            Note("its " + name + " are " + parts_[index] + ", and go up to 59");
            // What was rounded up, and minutes that never had hours.
            is_certain_ = is_certain_ && (index == 0 || (value == kMost + 1 && name == "seconds"));
            if (index == 0) {
                parts_.insert(parts_.begin(), "00");
                ++index;
            }
            parts_[index - 1] = Padded(std::stoi(parts_[index - 1]) + value / (kMost + 1),
                                       parts_[index - 1].size());
        } else if (parts_[index].size() > 2) {
            Note("its " + name + " have " + Digits(parts_[index].size()) + ", not two");
        }
        parts_[index] = Padded(value % (kMost + 1), 2);
        return true;
    }

    static std::string Padded(int value, std::size_t size) {
        const std::string digits = std::to_string(value);
        return std::string(size - std::min(size, digits.size()), '0') + digits;
    }

    bool is_one_ = true;  // no space stands between two of its digits
    bool is_certain_ = true;
    bool has_look_alike_ = false;
    bool has_thousandths_ = false;
    std::string time_;
    std::vector<std::string> parts_;
    std::string fraction_;
    MeantTime meant_;
};

}  // namespace

MeantTime ReadMeantTime(std::string_view time) {
    return !time.empty() && UsualTimeSize(time) == time.size() ? ReadUsualTime(time)
                                                               : Reader(time).Run();
}

std::size_t TimeLabelSize(std::string_view text) {
    if (text.empty() || console::IsDigit(text[0])) {
        return 0;
    }
    if (kOpening.find(text[0]) != kNowhere) {
        return 1;
    }
    for (const std::string_view label : kLabels) {
        const bool is_label = console::BeginsWithAnyCase(text, label);
        const std::size_t mark = is_label ? text.find_first_not_of(' ', label.size()) : kNowhere;
        if (mark != kNowhere && (text[mark] == ':' || text[mark] == '=')) {
            const std::size_t end = std::min(text.find_first_not_of(' ', mark + 1), text.size());
            return end + (end < text.size() && kOpening.find(text[end]) != kNowhere ? 1 : 0);
        }
    }
    return 0;
}

std::size_t UsualTimeSize(std::string_view text) {
    return Fits(text, kMinutes) ? kMinutes.size() : Fits(text, kHours) ? kHours.size() : 0;
}

}  // namespace quill::check
