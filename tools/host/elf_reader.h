// Reads numbers and texts out of an ELF file of either class and byte order. Every access is
// checked here and nowhere else, so that a damaged file is an exception and never a crash.
#ifndef TOOLS_HOST_ELF_READER_H_
#define TOOLS_HOST_ELF_READER_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/host/elf_check.h"

namespace quill::host {

// A part of the file lies outside of it; what() names the part.
class DamagedElf : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ElfReader {
  public:
    // The bytes must outlive the reader.
    ElfReader(std::string_view bytes, const ElfTarget& target);

    // Where a field lies in a record of 32-bit files, and where in one of 64-bit files.
    struct Place {
        std::size_t in_32;
        std::size_t in_64;
    };

    // A field of `width` bytes, 1 to 8, of the record at `record`. `what` names the record.
    std::uint64_t Field(const char* what, std::uint64_t record, Place place,
                        std::size_t width) const;
    // A field that is as wide as an address.
    std::uint64_t Word(const char* what, std::uint64_t record, Place place) const;
    // A zero-terminated text that ends before the offset `end`.
    std::string Text(const char* what, std::uint64_t offset, std::uint64_t end) const;
    // Throws unless that many bytes are in the file.
    void CheckRange(const char* what, std::uint64_t offset, std::uint64_t size) const;

    bool is_64() const { return is_64_; }
    std::uint64_t size() const { return bytes_.size(); }
    // The size of a record whose sizes in the two classes are these.
    std::size_t SizeOf(Place sizes) const { return is_64_ ? sizes.in_64 : sizes.in_32; }

  private:
    std::string_view bytes_;
    bool is_64_;
    bool is_big_endian_;
};

}  // namespace quill::host

#endif  // TOOLS_HOST_ELF_READER_H_
