#include "tools/host/elf_image.h"

#include <elf.h>

#include <algorithm>
#include <cstddef>

namespace quill::host {
namespace {

using Place = ElfReader::Place;

// The records of the two classes hold the same fields at other places and in other widths.
constexpr Place kHeaderSize = {sizeof(Elf32_Ehdr), sizeof(Elf64_Ehdr)};
constexpr Place kProgramTable = {offsetof(Elf32_Ehdr, e_phoff), offsetof(Elf64_Ehdr, e_phoff)};
constexpr Place kProgramSize = {offsetof(Elf32_Ehdr, e_phentsize),
                                offsetof(Elf64_Ehdr, e_phentsize)};
constexpr Place kProgramCount = {offsetof(Elf32_Ehdr, e_phnum), offsetof(Elf64_Ehdr, e_phnum)};
constexpr Place kSegmentType = {offsetof(Elf32_Phdr, p_type), offsetof(Elf64_Phdr, p_type)};
constexpr Place kSegmentFlags = {offsetof(Elf32_Phdr, p_flags), offsetof(Elf64_Phdr, p_flags)};
constexpr Place kSegmentOffset = {offsetof(Elf32_Phdr, p_offset), offsetof(Elf64_Phdr, p_offset)};
constexpr Place kSegmentAddress = {offsetof(Elf32_Phdr, p_vaddr), offsetof(Elf64_Phdr, p_vaddr)};
constexpr Place kSegmentSize = {offsetof(Elf32_Phdr, p_filesz), offsetof(Elf64_Phdr, p_filesz)};
constexpr Place kSegmentMemory = {offsetof(Elf32_Phdr, p_memsz), offsetof(Elf64_Phdr, p_memsz)};
constexpr Place kDynamicTag = {offsetof(Elf32_Dyn, d_tag), offsetof(Elf64_Dyn, d_tag)};
constexpr Place kDynamicValue = {offsetof(Elf32_Dyn, d_un), offsetof(Elf64_Dyn, d_un)};
constexpr Place kDynamicSize = {sizeof(Elf32_Dyn), sizeof(Elf64_Dyn)};

// Names may share their ends. Those of a file that is whole add up to less than this many times it.
constexpr std::uint64_t kMostNames = 4;

}  // namespace

ElfImage::ElfImage(std::string_view bytes, const ElfTarget& target) : file_(bytes, target) {
    ReadSegments();
    ReadEntries();
    FindNames();
}

void ElfImage::ReadSegments() {
    file_.CheckRange("the ELF header", 0, file_.SizeOf(kHeaderSize));
    const std::uint64_t table = file_.Word("the ELF header", 0, kProgramTable);
    const std::uint64_t size = file_.Field("the ELF header", 0, kProgramSize, 2);
    const std::uint64_t count = file_.Field("the ELF header", 0, kProgramCount, 2);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t at = table + i * size;
        const char* const what = "the table of segments";
        const ElfSegment segment = {
            file_.Field(what, at, kSegmentType, 4), file_.Field(what, at, kSegmentFlags, 4),
            file_.Word(what, at, kSegmentOffset),   file_.Word(what, at, kSegmentAddress),
            file_.Word(what, at, kSegmentSize),     file_.Word(what, at, kSegmentMemory)};
        if (segment.type == PT_LOAD || segment.type == PT_DYNAMIC) {
            // The loader would map what is not there, and the first access would end the program.
            file_.CheckRange("a segment", segment.offset, segment.size);
        }
        segments_.push_back(segment);
    }
}

const ElfSegment* ElfImage::FindSegment(std::uint64_t type) const {
    const auto found = std::find_if(segments_.begin(), segments_.end(),
                                    [type](const ElfSegment& one) { return one.type == type; });
    return found != segments_.end() ? &*found : nullptr;
}

void ElfImage::ReadEntries() {
    const ElfSegment* const dynamic = FindSegment(PT_DYNAMIC);
    if (dynamic == nullptr) {
        return;
    }
    const std::size_t step = file_.SizeOf(kDynamicSize);
    for (std::uint64_t at = 0; at + step <= dynamic->size; at += step) {
        const std::uint64_t record = dynamic->offset + at;
        const std::uint64_t tag = file_.Word("the dynamic section", record, kDynamicTag);
        const std::uint64_t value = file_.Word("the dynamic section", record, kDynamicValue);
        if (tag == DT_NULL) {
            return;
        }
        if (tag == DT_NEEDED) {
            needed_.push_back(value);
        }
        entries_.emplace(tag, value);
    }
}

std::uint64_t ElfImage::OffsetOf(const char* what, std::uint64_t address) const {
    for (const ElfSegment& segment : segments_) {
        if (segment.type == PT_LOAD && address >= segment.address &&
            address - segment.address < segment.size) {
            return segment.offset + (address - segment.address);
        }
    }
    throw DamagedElf(std::string(what) + " lies outside of the file");
}

std::uint64_t ElfImage::Entry(std::uint64_t tag) const {
    const auto found = entries_.find(tag);
    return found != entries_.end() ? found->second : 0;
}

void ElfImage::FindNames() {
    if (Entry(DT_STRTAB) == 0) {
        return;
    }
    names_ = OffsetOf("the table of names", Entry(DT_STRTAB));
    names_end_ = names_ + Entry(DT_STRSZ);
    names_left_ = kMostNames * file_.size();
}

std::string ElfImage::Name(std::uint64_t index) {
    if (index >= names_end_ - names_) {
        throw DamagedElf("a name lies outside of the table of names");
    }
    std::string name = file_.Text("a name", names_ + index, names_end_);
    if (name.size() > names_left_) {
        throw DamagedElf("the names are longer than the file");
    }
    names_left_ -= name.size();
    return name;
}

}  // namespace quill::host
