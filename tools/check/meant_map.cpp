#include "tools/check/meant_map.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <utility>

#include "tools/check/characters.h"
#include "tools/check/finding.h"
#include "tools/check/meant_time.h"
#include "tools/console/text.h"

namespace quill::check {
namespace {

constexpr std::array<std::string_view, 2> kItems = {"MPEGTS:", "LOCAL:"};
constexpr double kTicksPerSecond = 90000;

std::string InCapitals(std::string_view text) {
    std::string capitals(text);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return capitals;
}

// The value behind an item's name, of the characters that it may have; empty when there is none.
std::string ValueOf(const std::string& line, std::string_view item, std::string_view characters) {
    const std::size_t at = InCapitals(line).find(item.substr(0, item.size() - 1));
    const std::size_t begin = at == std::string_view::npos ? std::string_view::npos
                                                           : line.find_first_of("0123456789", at);
    if (begin == std::string_view::npos) {
        return "";
    }
    std::string value = line.substr(
        begin, std::min(line.find_first_not_of(characters, begin), line.size()) - begin);
    value.resize(value.find_last_not_of(",;:.") + 1);
    return value;
}

// In capitals, without spaces, and with one kind of colon.
std::string Squeezed(std::string_view plain) {
    std::string squeezed = InCapitals(plain);
    squeezed.erase(std::remove(squeezed.begin(), squeezed.end(), ' '), squeezed.end());
    std::replace(squeezed.begin(), squeezed.end(), '=', ':');
    return squeezed;
}

// Whether the line has the two items and no more, in either order.
bool HasItemsOnly(std::string_view plain, const std::string& ticks, const std::string& local) {
    const std::string squeezed = Squeezed(plain);
    const std::string mpeg = std::string(kItems[0]) + ticks;
    const std::string time = std::string(kItems[1]) + local;
    const std::size_t begin = std::min({squeezed.find(mpeg), squeezed.find(time), squeezed.size()});
    const std::string name = squeezed.substr(0, begin);
    std::string items = squeezed.substr(begin);
    std::replace(items.begin(), items.end(), ';', ',');
    return IsLikeMap(name) && std::count(name.begin(), name.end(), ':') <= 1 &&
           (items == mpeg + "," + time || items == time + "," + mpeg);
}

struct Complaint {
    std::string words;
    std::string_view about;
};

// What is wrong with an item, as the module cuts the line into them.
Complaint ComplaintOfItem(std::string_view item) {
    for (const std::string_view name : kItems) {
        const std::size_t at = item.find(name);
        if (at == std::string_view::npos) {
            continue;
        }
        if (at > 0) {
            const std::string_view before = item.substr(0, at);
            const LookAlike* const hidden = FindLookAlike(before);
            return LooksBlank(before)
                       ? Complaint{NameOf(hidden != nullptr ? hidden->code_point : ' ') +
                                       " before " + Quoted(name),
                                   item.substr(at)}
                       : Complaint{Quoted(before) + " before " + Quoted(name), before};
        }
        const std::string_view value = item.substr(name.size());
        if (name == kItems[0]) {
            return value.empty() || value.find_first_not_of("0123456789") != std::string_view::npos
                       ? Complaint{Quoted(value) + " is no number", value}
                       : Complaint{};
        }
        const MeantTime meant = ReadMeantTime(value);
        return meant.text == value
                   ? Complaint{}
                   : Complaint{"the time " + Quoted(value) + ": " + meant.complaint, value};
    }
    return {"unknown item " + Quoted(item), item};
}

Complaint ComplaintOf(std::string_view line) {
    std::string_view items = line.substr(std::min(kMapName.size(), line.size()));
    items.remove_prefix(items.substr(0, 1) == "=" ? 1 : 0);
    items.remove_prefix(std::min(items.find_first_not_of(' '), items.size()));
    items = items.substr(0, items.find_last_not_of(' ') + 1);
    const std::size_t comma = std::min(items.find(','), items.size());
    const Complaint first = ComplaintOfItem(items.substr(0, comma));
    return first.words.empty() && comma < items.size() ? ComplaintOfItem(items.substr(comma + 1))
                                                       : first;
}

}  // namespace

bool IsLikeMap(std::string_view line) {
    constexpr std::size_t kShortest = 12;  // the letters of its name, but for the first
    if (line.size() < kShortest) {
        return false;
    }
    std::string letters;
    for (const char c : Plain(line.substr(0, 40))) {
        if (c == '=' || c == ':' || console::IsDigit(c)) {
            break;
        }
        if (std::isalpha(static_cast<unsigned char>(c)) != 0) {
            letters += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    return letters == "XTIMESTAMPMAP" || letters == "TIMESTAMPMAP";
}

std::size_t FindMap(std::string_view text) {
    return InCapitals(text).find(kMapName);
}

MeantMap ReadMeantMap(std::string_view line) {
    constexpr std::size_t kMostDigits = 18;
    MeantMap meant;
    Complaint complaint = ComplaintOf(line);
    meant.complaint = std::move(complaint.words);
    meant.fault = complaint.about;
    const std::string plain = Plain(line);
    const std::string ticks = ValueOf(plain, kItems[0], "0123456789");
    const std::string written = ValueOf(plain, kItems[1], "0123456789:.,");
    const MeantTime local = ReadMeantTime(written);
    if (ticks.empty() || ticks.size() > kMostDigits || local.text.empty()) {
        return meant;
    }
    meant.mpeg_time = std::stoull(ticks);
    meant.text = std::string(kMapName) + "=MPEGTS:" + ticks + ",LOCAL:" + local.text;
    meant.shift = std::floor(static_cast<double>(meant.mpeg_time) / kTicksPerSecond) -
                  static_cast<double>(local.milliseconds) / 1000;
    meant.is_certain = local.is_certain && HasItemsOnly(plain, ticks, written);
    return meant;
}

std::string MapWithTicks(const MeantMap& meant, std::uint64_t ticks) {
    const std::size_t begin = meant.text.find(kItems[0]) + kItems[0].size();
    return meant.text.substr(0, begin) + std::to_string(ticks) +
           meant.text.substr(meant.text.find(',', begin));
}

}  // namespace quill::check
