#include "tools/inspect/attributes.h"

#include <string>

namespace quill::inspect {
namespace {

using host::ElfReader;

constexpr char kTable[] = "the table of attributes";

// Steps through a table, whose numbers are in groups of seven bits.
class AttributeReader {
  public:
    AttributeReader(const ElfReader& file, std::uint64_t at, std::uint64_t end, bool is_arm)
        : file_(file), at_(at), end_(end), is_arm_(is_arm) {}

    void ReadAll(Attributes& found) {
        while (at_ < end_) {
            ReadOne(found);
        }
    }

  private:
    std::uint64_t Number();
    void ReadOne(Attributes& found);

    const ElfReader& file_;
    std::uint64_t at_;
    std::uint64_t end_;
    bool is_arm_;
};

std::uint64_t AttributeReader::Number() {
    std::uint64_t number = 0;
    for (unsigned shift = 0; at_ < end_; shift += 7) {
        const std::uint64_t byte = file_.Field(kTable, at_++, {0, 0}, 1);
        number |= shift < 64 ? (byte & 0x7Fu) << shift : 0;
        if ((byte & 0x80u) == 0) {
            break;
        }
    }
    return number;
}

// Odd tags have a text, even ones a number, the compatibility tag both; ARM has three exceptions.
void AttributeReader::ReadOne(Attributes& found) {
    constexpr std::uint64_t kCompatibility = 32;
    const std::uint64_t tag = Number();
    const bool is_text = is_arm_ && tag < kCompatibility ? tag == 4 || tag == 5 : tag % 2 == 1;
    if (!is_text) {
        found[tag] = Number();
    }
    if (is_text || tag == kCompatibility) {
        at_ += file_.Text(kTable, at_, end_).size() + 1;
    }
}

}  // namespace

Attributes ReadAttributes(const ElfReader& file, std::uint64_t start, std::uint64_t size,
                          const char* vendor) {
    constexpr std::uint64_t kWholeFile = 1;
    Attributes found;
    file.CheckRange(kTable, start, size);
    const std::uint64_t end = start + size;
    std::uint64_t part = start + 1;  // behind the format's letter
    while (part + 4 < end) {
        const std::uint64_t length = file.Field(kTable, part, {0, 0}, 4);
        if (length < 5 || length > end - part) {
            break;
        }
        const std::string name = file.Text(kTable, part + 4, part + length);
        const std::uint64_t scope = part + 4 + name.size() + 1;
        if (name == vendor && scope + 5 <= part + length &&
            file.Field(kTable, scope, {0, 0}, 1) == kWholeFile) {
            const std::uint64_t bytes = file.Field(kTable, scope + 1, {0, 0}, 4);
            const std::uint64_t stop =
                bytes < part + length - scope ? scope + bytes : part + length;
            AttributeReader(file, scope + 5, stop, name == "aeabi").ReadAll(found);
        }
        part += length;
    }
    return found;
}

}  // namespace quill::inspect
