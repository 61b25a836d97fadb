#include "tools/host/elf_reader.h"

#include <elf.h>

namespace quill::host {

ElfReader::ElfReader(std::string_view bytes, const ElfTarget& target)
    : bytes_(bytes),
      is_64_(target.bits_class == ELFCLASS64),
      is_big_endian_(target.byte_order == ELFDATA2MSB) {}

void ElfReader::CheckRange(const char* what, std::uint64_t offset, std::uint64_t size) const {
    // Written so that no sum can wrap.
    if (offset > bytes_.size() || size > bytes_.size() - offset) {
        throw DamagedElf(std::string(what) + " lies outside of the file");
    }
}

std::uint64_t ElfReader::Field(const char* what, std::uint64_t record, Place place,
                               std::size_t width) const {
    CheckRange(what, record, SizeOf(place) + width);
    const auto start = static_cast<std::size_t>(record) + SizeOf(place);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t at = is_big_endian_ ? i : width - 1 - i;
        value = value << 8 | static_cast<std::uint8_t>(bytes_[start + at]);
    }
    return value;
}

std::uint64_t ElfReader::Word(const char* what, std::uint64_t record, Place place) const {
    return Field(what, record, place, is_64_ ? 8 : 4);
}

std::string ElfReader::Text(const char* what, std::uint64_t offset, std::uint64_t end) const {
    CheckRange(what, offset, 0);
    const std::uint64_t most = end > offset ? end - offset : 0;
    const std::string_view rest =
        bytes_.substr(static_cast<std::size_t>(offset),
                      most < bytes_.size() ? static_cast<std::size_t>(most) : bytes_.size());
    const std::size_t length = rest.find('\0');
    if (length == std::string_view::npos) {
        throw DamagedElf(std::string(what) + " has no end");
    }
    return std::string(rest.substr(0, length));
}

}  // namespace quill::host
