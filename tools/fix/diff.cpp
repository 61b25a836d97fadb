#include "tools/fix/diff.h"

#include <algorithm>
#include <vector>

#include "tools/check/track_text.h"

namespace quill::fix {
namespace {

constexpr std::size_t kContext = 3;

// A line of either side, or of both; without the sign.
struct Row {
    char sign;
    std::string text;
};

std::string Whole(const Line& line) {
    return std::string(line.text) + std::string(line.end);
}

// The lines of both sides in one order, those of the left before those of the right. As each line
// knows where it comes from, nothing has to be searched for.
std::vector<Row> Rows(std::string_view track, const Document& document) {
    std::vector<Row> rows;
    std::vector<Row> added;
    std::size_t at = 0;
    std::uint32_t number = 0;
    const auto take_left = [&] {
        const check::Line line = check::LineAt(track, at);
        std::string text(track.substr(at, line.end - at));
        at = line.end;
        ++number;
        return text;
    };
    const auto add_right = [&] {
        rows.insert(rows.end(), added.begin(), added.end());
        added.clear();
    };
    for (const Line& line : document.lines()) {
        while (!line.inserted && number + 1 < line.number) {
            rows.push_back({'-', take_left()});
        }
        if (line.inserted) {
            added.push_back({'+', Whole(line)});
            continue;
        }
        const std::string left = take_left();
        const std::string right = Whole(line);
        if (left == right) {
            add_right();
            rows.push_back({' ', left});
        } else {
            rows.push_back({'-', left});
            added.push_back({'+', right});
        }
    }
    while (at < track.size()) {
        rows.push_back({'-', take_left()});
    }
    add_right();
    return rows;
}

std::string Print(const Row& row) {
    const bool ended = !row.text.empty() && row.text.back() == '\n';
    return row.sign + row.text + (ended ? "" : "\n\\ No newline at end of file\n");
}

std::size_t CountSide(const std::vector<Row>& rows, std::size_t from, std::size_t to, char side) {
    return static_cast<std::size_t>(
        std::count_if(rows.begin() + static_cast<std::ptrdiff_t>(from),
                      rows.begin() + static_cast<std::ptrdiff_t>(to),
                      [side](const Row& row) { return row.sign == ' ' || row.sign == side; }));
}

// A hunk that begins behind `line` lines of its side. One without lines names the line before it.
std::string Place(std::size_t line, std::size_t count) {
    return std::to_string(count == 0 ? line : line + 1) + "," + std::to_string(count);
}

// Carriage returns alone end no line of a diff.
std::vector<Row> JoinReturns(std::vector<Row> rows) {
    const auto ends_alone = [](const Row& row) {
        return !row.text.empty() && row.text.back() == '\r';
    };
    if (std::none_of(rows.begin(), rows.end(), ends_alone)) {
        return rows;
    }
    Row left{'-', ""};
    Row right{'+', ""};
    std::vector<Row> joined;
    const auto send = [&joined](Row& row) {
        if (!row.text.empty()) {
            joined.push_back(row);
            row.text.clear();
        }
    };
    const auto add = [&](Row& side, const Row& row) {
        side.text += row.sign == ' ' || row.sign == side.sign ? row.text : "";
    };
    for (const Row& row : rows) {
        const bool whole = left.text.empty() && right.text.empty() && !ends_alone(row);
        if (whole) {
            joined.push_back(row);
            continue;
        }
        add(left, row);
        add(right, row);
        if (row.sign == ' ' && !ends_alone(row)) {
            send(left);
            send(right);
        }
    }
    send(left);
    send(right);
    return joined;
}

}  // namespace

std::string UnifiedDiff(const std::string& name, std::string_view track, const Document& document) {
    const std::vector<Row> rows = JoinReturns(Rows(track, document));
    const auto changes = [&rows](std::size_t index) { return rows[index].sign != ' '; };
    std::string diff;
    std::size_t left = 0;
    std::size_t right = 0;
    std::size_t reached = 0;
    for (std::size_t index = 0; index < rows.size(); ++index) {
        if (!changes(index)) {
            continue;
        }
        const std::size_t begin = std::max(reached, index - std::min(index, kContext));
        std::size_t end = index + 1;
        for (std::size_t at = end; at < std::min(end + 2 * kContext, rows.size()); ++at) {
            end = changes(at) ? at + 1 : end;
        }
        end = std::min(end + kContext, rows.size());
        left += CountSide(rows, reached, begin, '-');
        right += CountSide(rows, reached, begin, '+');
        const std::size_t left_count = CountSide(rows, begin, end, '-');
        const std::size_t right_count = CountSide(rows, begin, end, '+');
        if (diff.empty()) {
            diff.append("--- ").append(name).append("\n+++ ").append(name).append("\n");
        }
        diff += "@@ -";
        diff += Place(left, left_count);
        diff += " +";
        diff += Place(right, right_count);
        diff += " @@\n";
        for (std::size_t at = begin; at < end; ++at) {
            diff += Print(rows[at]);
        }
        left += left_count;
        right += right_count;
        reached = end;
        index = end - 1;
    }
    return diff;
}

}  // namespace quill::fix
