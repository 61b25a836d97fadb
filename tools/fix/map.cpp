// The header line that maps the track's times to those of a transport stream.
#include <algorithm>
#include <cstdint>
#include <string>

#include "tools/check/meant_map.h"
#include "tools/console/text.h"
#include "tools/fix/blocks.h"
#include "tools/fix/fixer.h"

namespace quill::fix {
namespace {

// A map, and where its line stands.
struct Map {
    std::size_t index;
    check::MeantMap meant;
};

// One that is like a map, in the header or alone in the first block behind it.
std::vector<Map> FindMaps(const Document& document) {
    const std::vector<Line>& lines = document.lines();
    std::vector<Map> maps;
    const std::size_t on_first = check::FindMap(lines[0].text);
    if (on_first != std::string_view::npos) {
        maps.push_back({0, check::ReadMeantMap(lines[0].text.substr(on_first))});
    }
    const auto add = [&](std::size_t index) {
        const std::string_view text = lines[index].text;
        if (check::IsLikeMap(text) || console::BeginsWith(text, check::kMapName)) {
            maps.push_back({index, check::ReadMeantMap(lines[index].text)});
        }
    };
    const std::size_t end = document.HeaderEnd();
    for (std::size_t index = 1; index < end; ++index) {
        add(index);
    }
    const Range block = NextBlock(lines, end);
    if (block.size() == 1) {
        add(block.begin);
    }
    return maps;
}

// What the module reads as it is meant.
std::string TextOf(const check::MeantMap& meant) {
    // The last number of 32 bits stands for none, and is less than a second from the one before.
    return meant.mpeg_time == UINT32_MAX ? check::MapWithTicks(meant, UINT32_MAX - 1) : meant.text;
}

// Puts the map below the first line, in the place of the line that it stands on.
void Move(const Workshop& shop, const Map& map) {
    Document& document = shop.document;
    const std::string_view line = document.lines()[map.index].text;
    const char* const code = map.index == 0 ? "map-on-first-line" : "late-map";
    if (document.lines().size() < 2 || !shop.Wants(code)) {
        return;
    }
    document.Record(document.lines()[map.index].number, code, "put below the first line");
    if (map.index == 0) {
        const std::string_view rest = line.substr(0, check::FindMap(line));
        document.Replace(0, std::string(rest.substr(0, rest.find_last_not_of(" \t") + 1)), {});
    } else {
        DropBlock(document, {map.index, map.index + 1});
    }
    document.InsertAbove(1, TextOf(map.meant));
    document.StateOffset(map.meant.shift);
    document.Commit();
}

}  // namespace

// With a second map it would have to be known which is meant.
void FixMap(const Workshop& shop) {
    Document& document = shop.document;
    const std::vector<Map> maps = FindMaps(document);
    if (maps.size() != 1 || document.lines()[maps[0].index].frozen || !maps[0].meant.is_certain ||
        maps[0].meant.mpeg_time > UINT32_MAX) {
        return;
    }
    const Map& map = maps[0];
    if (map.index == 0 || map.index > document.HeaderEnd()) {
        Move(shop, map);
        return;
    }
    const Line& line = document.lines()[map.index];
    const std::string text = TextOf(map.meant);
    const check::Code* const code = shop.oracle.FaultOfMap(line.text);
    if (code != nullptr && shop.filter.Lets(*code)) {
        document.Record(line.number, code->name, line.text, text);
        document.StateOffset(map.meant.shift);
        document.Replace(map.index, text, {});
    }
}

}  // namespace quill::fix
