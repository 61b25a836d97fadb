// What a loader maps of an ELF file and goes by: its segments and its dynamic section.
#ifndef TOOLS_HOST_ELF_IMAGE_H_
#define TOOLS_HOST_ELF_IMAGE_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/host/elf_reader.h"

namespace quill::host {

struct ElfSegment {
    std::uint64_t type;   // PT_...
    std::uint64_t flags;  // PF_...
    std::uint64_t offset;
    std::uint64_t address;
    std::uint64_t size;    // in the file
    std::uint64_t memory;  // in memory
};

class ElfImage {
  public:
    // The bytes, of a file of class 32 or 64, must outlive the image. Throws DamagedElf when a part
    // that is loaded is not there, as all functions do that look for something.
    ElfImage(std::string_view bytes, const ElfTarget& target);

    const ElfReader& file() const { return file_; }
    const std::vector<ElfSegment>& segments() const { return segments_; }
    // The first of its type; null when there is none.
    const ElfSegment* FindSegment(std::uint64_t type) const;

    // The value of the dynamic section's first entry of this tag; 0, which is no address of a
    // table, where there is none.
    std::uint64_t Entry(std::uint64_t tag) const;
    bool HasEntry(std::uint64_t tag) const { return entries_.count(tag) != 0; }
    // The libraries that it names, as indexes of their names.
    const std::vector<std::uint64_t>& needed() const { return needed_; }

    // Where in the file an address of memory lies.
    std::uint64_t OffsetOf(const char* what, std::uint64_t address) const;
    // A text of the table of names. All that are asked for must not be much longer than the file.
    std::string Name(std::uint64_t index);

  private:
    void ReadSegments();
    void ReadEntries();
    void FindNames();

    ElfReader file_;
    std::vector<ElfSegment> segments_;
    std::map<std::uint64_t, std::uint64_t> entries_;  // of the dynamic section, by tag
    std::vector<std::uint64_t> needed_;
    std::uint64_t names_ = 0;  // where the table of names begins
    std::uint64_t names_end_ = 0;
    std::uint64_t names_left_ = 0;  // bytes of names that may still be read
};

}  // namespace quill::host

#endif  // TOOLS_HOST_ELF_IMAGE_H_
