#include "tools/report/columns.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace quill::report {
namespace {

// 4.0 is 4: it is the same number, and two bytes shorter.
Json Shortened(const Json& value) {
    if (value.is_number_float()) {
        const double number = value.get<double>();
        constexpr double kLargestExact = 1e15;
        if (std::fabs(number) < kLargestExact && number == std::trunc(number)) {
            return static_cast<std::int64_t>(number);
        }
    }
    return value;
}

}  // namespace

std::size_t BytesOf(const Json& value) {
    return console::JsonText(value, console::Letters::kAll).size();
}

void Columns::Add(const Json& object) {
    for (const auto& [key, value] : object.items()) {
        Column& column = columns_[key];
        if (column.empty()) {
            keys_.push_back(key);
        }
        column.resize(size_);  // null where the objects before lack it
        column.push_back(Shortened(value));
    }
    ++size_;
}

Json Columns::Pack(std::size_t most) const {
    // A row takes more than that of two numbers of one digit.
    constexpr std::size_t kLeastOfRow = 4;
    std::size_t count = std::min(size_, most / kLeastOfRow);
    for (;;) {
        Json packed = PackFirst(count);
        const std::size_t bytes = BytesOf(packed);
        if (bytes <= most || count == 0) {
            return packed;
        }
        // As many as would fit if all were alike, and a few less to get there soon.
        constexpr double kLess = 0.95;
        count = static_cast<std::size_t>(static_cast<double>(count) * kLess *
                                         static_cast<double>(most) / static_cast<double>(bytes));
    }
}

Json Columns::PackFirst(std::size_t count) const {
    Json packed = {{"count", count}, {"left_out", size_ - count}, {"columns", Json::object()}};
    for (const std::string& key : keys_) {
        packed["columns"][key] = PackColumn(columns_.at(key), count);
    }
    return packed;
}

Json Columns::PackColumn(const Column& column, std::size_t count) {
    Column rows = column;
    rows.resize(count);  // null where the last objects lack it
    const auto is_other = [&](const Json& value) { return value != rows[0]; };
    if (count > 0 && std::none_of(rows.begin(), rows.end(), is_other)) {
        return {{"same", rows[0]}};
    }
    if (std::none_of(rows.begin(), rows.end(),
                     [](const Json& value) { return value.is_string(); })) {
        return {{"rows", std::move(rows)}};
    }
    std::map<Json, std::size_t> places;
    Json values = Json::array();
    Json numbers = Json::array();
    for (const Json& value : rows) {
        const auto [place, is_new] = places.emplace(value, places.size());
        if (is_new) {
            values.push_back(value);
        }
        numbers.push_back(place->second);
    }
    if (values.size() > count / 2) {
        return {{"rows", std::move(rows)}};
    }
    return {{"values", std::move(values)}, {"rows", std::move(numbers)}};
}

}  // namespace quill::report
