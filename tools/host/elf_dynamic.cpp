#include "tools/host/elf_dynamic.h"

#include <elf.h>

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "tools/host/elf_reader.h"

namespace quill::host {
namespace {

using Place = ElfReader::Place;

// The records of the two classes hold the same fields at other places and in other widths.
constexpr Place kHeaderSize = {sizeof(Elf32_Ehdr), sizeof(Elf64_Ehdr)};
constexpr Place kProgramTable = {offsetof(Elf32_Ehdr, e_phoff), offsetof(Elf64_Ehdr, e_phoff)};
constexpr Place kProgramSize = {offsetof(Elf32_Ehdr, e_phentsize),
                                offsetof(Elf64_Ehdr, e_phentsize)};
constexpr Place kProgramCount = {offsetof(Elf32_Ehdr, e_phnum), offsetof(Elf64_Ehdr, e_phnum)};
constexpr Place kFileType = {offsetof(Elf32_Ehdr, e_type), offsetof(Elf64_Ehdr, e_type)};
constexpr Place kSegmentType = {offsetof(Elf32_Phdr, p_type), offsetof(Elf64_Phdr, p_type)};
constexpr Place kSegmentOffset = {offsetof(Elf32_Phdr, p_offset), offsetof(Elf64_Phdr, p_offset)};
constexpr Place kSegmentAddress = {offsetof(Elf32_Phdr, p_vaddr), offsetof(Elf64_Phdr, p_vaddr)};
constexpr Place kSegmentSize = {offsetof(Elf32_Phdr, p_filesz), offsetof(Elf64_Phdr, p_filesz)};
constexpr Place kDynamicTag = {offsetof(Elf32_Dyn, d_tag), offsetof(Elf64_Dyn, d_tag)};
constexpr Place kDynamicValue = {offsetof(Elf32_Dyn, d_un), offsetof(Elf64_Dyn, d_un)};
constexpr Place kDynamicSize = {sizeof(Elf32_Dyn), sizeof(Elf64_Dyn)};
constexpr Place kSymbolName = {offsetof(Elf32_Sym, st_name), offsetof(Elf64_Sym, st_name)};
constexpr Place kSymbolInfo = {offsetof(Elf32_Sym, st_info), offsetof(Elf64_Sym, st_info)};
constexpr Place kSymbolOther = {offsetof(Elf32_Sym, st_other), offsetof(Elf64_Sym, st_other)};
constexpr Place kSymbolSection = {offsetof(Elf32_Sym, st_shndx), offsetof(Elf64_Sym, st_shndx)};
constexpr Place kSymbolBytes = {offsetof(Elf32_Sym, st_size), offsetof(Elf64_Sym, st_size)};
constexpr Place kSymbolSize = {sizeof(Elf32_Sym), sizeof(Elf64_Sym)};

// Names may share their ends. Those of a file that is whole add up to less than this many times it.
constexpr std::uint64_t kMostNames = 4;

struct Segment {
    std::uint64_t type;
    std::uint64_t offset;
    std::uint64_t address;
    std::uint64_t size;  // in the file
};

class DynamicReader {
  public:
    DynamicReader(std::string_view bytes, const ElfTarget& target) : file_(bytes, target) {}

    ElfDynamic Read();

  private:
    void ReadSegments();
    void ReadEntries();
    std::uint64_t OffsetOf(const char* what, std::uint64_t address) const;
    std::uint64_t Entry(std::uint64_t tag) const;
    void FindNames();
    std::string Name(std::uint64_t index);
    std::uint64_t CountSymbols() const;
    std::uint64_t CountHashed(std::uint64_t table) const;
    void ReadVersions(ElfDynamic& found);
    void ReadExports(ElfDynamic& found);

    std::uint64_t U32(const char* what, std::uint64_t offset) const {
        return file_.Field(what, offset, {0, 0}, 4);
    }

    ElfReader file_;
    std::vector<Segment> segments_;
    std::map<std::uint64_t, std::uint64_t> entries_;  // of the dynamic section, by tag
    std::vector<std::uint64_t> needed_;               // names that DT_NEEDED gives
    std::uint64_t names_ = 0;                         // where the table of names begins
    std::uint64_t names_end_ = 0;
    std::uint64_t names_left_ = 0;  // bytes of names that may still be read
};

void DynamicReader::ReadSegments() {
    file_.CheckRange("the ELF header", 0, file_.SizeOf(kHeaderSize));
    const std::uint64_t table = file_.Word("the ELF header", 0, kProgramTable);
    const std::uint64_t size = file_.Field("the ELF header", 0, kProgramSize, 2);
    const std::uint64_t count = file_.Field("the ELF header", 0, kProgramCount, 2);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t at = table + i * size;
        const char* const what = "the table of segments";
        const Segment segment = {
            file_.Field(what, at, kSegmentType, 4), file_.Word(what, at, kSegmentOffset),
            file_.Word(what, at, kSegmentAddress), file_.Word(what, at, kSegmentSize)};
        if (segment.type == PT_LOAD || segment.type == PT_DYNAMIC) {
            // The loader would map what is not there, and the first access would end the program.
            file_.CheckRange("a segment", segment.offset, segment.size);
            segments_.push_back(segment);
        }
    }
}

void DynamicReader::ReadEntries() {
    const auto dynamic = std::find_if(segments_.begin(), segments_.end(),
                                      [](const Segment& one) { return one.type == PT_DYNAMIC; });
    if (dynamic == segments_.end()) {
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

std::uint64_t DynamicReader::OffsetOf(const char* what, std::uint64_t address) const {
    for (const Segment& segment : segments_) {
        if (segment.type == PT_LOAD && address >= segment.address &&
            address - segment.address < segment.size) {
            return segment.offset + (address - segment.address);
        }
    }
    throw DamagedElf(std::string(what) + " lies outside of the file");
}

// 0 where there is none, which is no address of a table.
std::uint64_t DynamicReader::Entry(std::uint64_t tag) const {
    const auto found = entries_.find(tag);
    return found != entries_.end() ? found->second : 0;
}

void DynamicReader::FindNames() {
    if (Entry(DT_STRTAB) == 0) {
        return;
    }
    names_ = OffsetOf("the table of names", Entry(DT_STRTAB));
    names_end_ = names_ + Entry(DT_STRSZ);
    names_left_ = kMostNames * file_.size();
}

std::string DynamicReader::Name(std::uint64_t index) {
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

// The symbol table has no count of its own: its hash table knows.
std::uint64_t DynamicReader::CountSymbols() const {
    const std::uint64_t plain = Entry(DT_HASH);
    if (plain != 0) {
        return U32("the hash table", OffsetOf("the hash table", plain) + 4);
    }
    const std::uint64_t hashed = Entry(DT_GNU_HASH);
    return hashed != 0 ? CountHashed(OffsetOf("the hash table", hashed)) : 0;
}

// One past the last symbol of the last chain.
std::uint64_t DynamicReader::CountHashed(std::uint64_t table) const {
    const char* const what = "the hash table";
    const std::uint64_t bucket_count = U32(what, table);
    const std::uint64_t first_symbol = U32(what, table + 4);
    const std::uint64_t filter_words = U32(what, table + 8);
    const std::uint64_t buckets = table + 16 + filter_words * (file_.is_64() ? 8 : 4);
    file_.CheckRange(what, buckets, bucket_count * 4);
    std::uint64_t last = 0;
    for (std::uint64_t i = 0; i < bucket_count; ++i) {
        last = std::max(last, U32(what, buckets + i * 4));
    }
    if (last < first_symbol) {
        return first_symbol;
    }
    const std::uint64_t chains = buckets + bucket_count * 4;
    // A chain's last hash is odd.
    while ((U32(what, chains + (last - first_symbol) * 4) & 1u) == 0) {
        ++last;
    }
    return last + 1;
}

// "GLIBCXX_3.4.21" counts for GLIBCXX. A name without a number at its end is its library's own.
void NoteVersion(const std::string& name, ElfDynamic& found) {
    const std::size_t joint = name.rfind('_');
    if (joint == std::string::npos || joint + 1 >= name.size() ||
        std::isdigit(static_cast<unsigned char>(name[joint + 1])) == 0) {
        return;
    }
    std::string& highest = found.versions[name.substr(0, joint)];
    const std::string version = name.substr(joint + 1);
    if (highest.empty() || IsHigherVersion(version, highest)) {
        highest = version;
    }
}

void DynamicReader::ReadVersions(ElfDynamic& found) {
    const char* const what = "the table of versions";
    const std::uint64_t table = Entry(DT_VERNEED);
    const std::uint64_t count = Entry(DT_VERNEEDNUM);
    std::uint64_t records_left = file_.size() / sizeof(Elf32_Vernaux);
    const auto take_record = [&records_left] {
        if (records_left-- == 0) {
            throw DamagedElf("the versions are more than the file can hold");
        }
    };
    std::uint64_t library = table != 0 ? OffsetOf(what, table) : 0;
    // Both classes have the same records here.
    for (std::uint64_t i = 0; table != 0 && i < count; ++i) {
        take_record();
        const std::uint64_t names = file_.Field(what, library, {2, 2}, 2);
        std::uint64_t version = library + U32(what, library + offsetof(Elf32_Verneed, vn_aux));
        for (std::uint64_t j = 0; j < names; ++j) {
            take_record();
            NoteVersion(Name(U32(what, version + offsetof(Elf32_Vernaux, vna_name))), found);
            const std::uint64_t next_name = U32(what, version + offsetof(Elf32_Vernaux, vna_next));
            if (next_name == 0) {
                break;
            }
            version += next_name;
        }
        const std::uint64_t next = U32(what, library + offsetof(Elf32_Verneed, vn_next));
        if (next == 0) {
            break;
        }
        library += next;
    }
}

void DynamicReader::ReadExports(ElfDynamic& found) {
    const char* const what = "the table of symbols";
    const std::uint64_t count = Entry(DT_SYMTAB) != 0 ? CountSymbols() : 0;
    const std::uint64_t table = count != 0 ? OffsetOf(what, Entry(DT_SYMTAB)) : 0;
    const std::size_t step = file_.SizeOf(kSymbolSize);
    file_.CheckRange(what, table, count * step);
    for (std::uint64_t i = 1; i < count; ++i) {
        const std::uint64_t at = table + i * step;
        const auto info = static_cast<unsigned>(file_.Field(what, at, kSymbolInfo, 1));
        const unsigned visibility =
            ELF32_ST_VISIBILITY(static_cast<unsigned>(file_.Field(what, at, kSymbolOther, 1)));
        if (file_.Field(what, at, kSymbolSection, 2) == SHN_UNDEF ||
            ELF32_ST_BIND(info) == STB_LOCAL || visibility == STV_HIDDEN ||
            visibility == STV_INTERNAL) {
            continue;
        }
        found.exports.push_back({Name(file_.Field(what, at, kSymbolName, 4)), ELF32_ST_TYPE(info),
                                 file_.Word(what, at, kSymbolBytes)});
    }
    std::sort(found.exports.begin(), found.exports.end(),
              [](const ElfExport& one, const ElfExport& other) { return one.name < other.name; });
}

ElfDynamic DynamicReader::Read() {
    ElfDynamic found;
    found.type = static_cast<unsigned>(file_.Field("the ELF header", 0, kFileType, 2));
    ReadSegments();
    ReadEntries();
    FindNames();
    for (const std::uint64_t name : needed_) {
        found.needed.push_back(Name(name));
    }
    ReadVersions(found);
    ReadExports(found);
    return found;
}

}  // namespace

ElfDynamic ReadElfDynamic(std::string_view bytes, const ElfTarget& target) {
    if (target.bits_class != ELFCLASS32 && target.bits_class != ELFCLASS64) {
        throw DamagedElf("the ELF header is of neither class");
    }
    return DynamicReader(bytes, target).Read();
}

bool IsHigherVersion(const std::string& version, const std::string& than) {
    const auto next_number = [](const std::string& text, std::size_t& at) {
        std::uint64_t number = 0;
        for (; at < text.size() && text[at] != '.'; ++at) {
            number = number * 10 + static_cast<unsigned char>(text[at]) - '0';
        }
        ++at;
        return number;
    };
    std::size_t at = 0;
    std::size_t other_at = 0;
    while (at < version.size() || other_at < than.size()) {
        const std::uint64_t number = next_number(version, at);
        const std::uint64_t other = next_number(than, other_at);
        if (number != other) {
            return number > other;
        }
    }
    return false;
}

}  // namespace quill::host
