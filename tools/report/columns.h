// Rows of JSON objects, packed.
#ifndef TOOLS_REPORT_COLUMNS_H_
#define TOOLS_REPORT_COLUMNS_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/console/json.h"

namespace quill::report {

using console::Json;

// How many bytes of the page a value takes.
std::size_t BytesOf(const Json& value);

// Objects of one kind, each with about the same keys: the names of the keys and what repeats are
// written once. model.js makes the same objects of it again, but for a key that one of them lacks,
// which comes back as null. A column is one of
//   {"same": value}                    every object has this value
//   {"rows": [value, ...]}             one value for each object
//   {"values": [...], "rows": [2,...]} for each object the place of its value among the values
class Columns {
  public:
    void Add(const Json& object);

    std::size_t size() const { return size_; }
    // The first objects, in no more bytes than `most`, all of them if they fit:
    // {"count": of those, "left_out": of the others, "columns": {"line": column, ...}}
    Json Pack(std::size_t most) const;

  private:
    using Column = std::vector<Json>;

    Json PackFirst(std::size_t count) const;
    static Json PackColumn(const Column& column, std::size_t count);

    std::size_t size_ = 0;
    std::vector<std::string> keys_;
    std::map<std::string, Column> columns_;
};

}  // namespace quill::report

#endif  // TOOLS_REPORT_COLUMNS_H_
