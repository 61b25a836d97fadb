// The header line that maps the track's times to those of a transport stream.
#include <algorithm>
#include <cctype>
#include <optional>
#include <string>

#include "tools/check/meant_map.h"
#include "tools/console/text.h"
#include "tools/fix/characters.h"
#include "tools/fix/fixer.h"
#include "tools/fix/timing_reading.h"

namespace quill::fix {
namespace {

constexpr std::string_view kName = "X-TIMESTAMP-MAP";

// In capitals, without anything that is not seen. Spaces and "=" for ":" are what writers add.
std::string Squeezed(std::string_view line) {
    const Looks looks(line);
    std::string text;
    for (const char c : looks.text()) {
        if (c != ' ') {
            text += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    return text;
}

// Both items of a map, in the order in which they stand there.
struct Map {
    std::optional<std::uint32_t> ticks;
    std::optional<WrittenTime> local;
    std::string items;
};

bool TakeItem(const std::string& item, Map& map) {
    const std::size_t colon = item.find_first_of(":=");
    const std::string name = item.substr(0, colon);
    const std::string value = colon == std::string::npos ? "" : item.substr(colon + 1);
    constexpr std::size_t kMostDigits = 10;
    if (name == "MPEGTS" && !map.ticks && !value.empty() && value.size() <= kMostDigits &&
        value.find_first_not_of("0123456789") == std::string::npos) {
        const unsigned long long ticks = std::stoull(value);
        // The last number of 32 bits stands for none.
        if (ticks < UINT32_MAX) {
            map.ticks = static_cast<std::uint32_t>(ticks);
        }
        map.items += "MPEGTS:" + value;
        return map.ticks.has_value();
    }
    if (name == "LOCAL" && !map.local) {
        map.local = ReadTime(value);
        if (map.local) {
            map.items += "LOCAL:" + (IsUsualTime(value) ? value : map.local->Canonical());
        }
        return map.local.has_value();
    }
    return false;
}

std::optional<Map> ReadMap(std::string_view squeezed) {
    squeezed.remove_prefix(kName.size());
    squeezed.remove_prefix(squeezed.substr(0, 1).find_first_of("=:") == 0 ? 1 : 0);
    const std::size_t comma = std::min(squeezed.find(','), squeezed.size());
    Map map;
    if (!TakeItem(std::string(squeezed.substr(0, comma)), map)) {
        return std::nullopt;
    }
    map.items += ',';
    if (comma == squeezed.size() || !TakeItem(std::string(squeezed.substr(comma + 1)), map)) {
        return std::nullopt;
    }
    return map;
}

}  // namespace

// With a second map in the header it would have to be known which is meant.
void FixMap(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Line>& lines = document.lines();
    const std::size_t end = document.HeaderEnd();
    std::size_t found = end;
    for (std::size_t index = 1; index < end; ++index) {
        if (console::BeginsWith(Squeezed(lines[index].text), check::kMapName)) {
            if (found < end) {
                return;
            }
            found = index;
        }
    }
    if (found == end || lines[found].frozen) {
        return;
    }
    const std::string_view line = lines[found].text;
    const bool has_name = line.substr(0, kName.size()) == kName;
    const char* const code = has_name ? "map-value" : "map-name";
    if (!shop.Wants(code)) {
        return;
    }
    if (shop.oracle.ReadsMap(line)) {
        return;
    }
    const std::optional<Map> map = ReadMap(Squeezed(line));
    if (!map) {
        return;
    }
    const std::string text = std::string(kName) + "=" + map->items;
    document.Record(lines[found].number, code, line, text);
    const std::uint32_t seconds = *map->ticks / 90000;  // whole ones, as the module counts them
    document.StateOffset(static_cast<double>(seconds) -
                         static_cast<double>(map->local->milliseconds) / 1000);
    document.Replace(found, text, {});
}

}  // namespace quill::fix
