#include "tools/host/elf_dynamic.h"

#include <elf.h>

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "tools/host/elf_image.h"

namespace quill::host {
namespace {

using Place = ElfReader::Place;

constexpr Place kFileType = {offsetof(Elf32_Ehdr, e_type), offsetof(Elf64_Ehdr, e_type)};
constexpr Place kSymbolName = {offsetof(Elf32_Sym, st_name), offsetof(Elf64_Sym, st_name)};
constexpr Place kSymbolInfo = {offsetof(Elf32_Sym, st_info), offsetof(Elf64_Sym, st_info)};
constexpr Place kSymbolOther = {offsetof(Elf32_Sym, st_other), offsetof(Elf64_Sym, st_other)};
constexpr Place kSymbolSection = {offsetof(Elf32_Sym, st_shndx), offsetof(Elf64_Sym, st_shndx)};
constexpr Place kSymbolBytes = {offsetof(Elf32_Sym, st_size), offsetof(Elf64_Sym, st_size)};
constexpr Place kSymbolSize = {sizeof(Elf32_Sym), sizeof(Elf64_Sym)};

// Newer than the headers of some toolchains.
constexpr std::uint64_t kPackedRelocations = 36;      // DT_RELR
constexpr std::uint64_t kMipsHashTable = 0x70000036;  // DT_MIPS_XHASH
constexpr std::uint64_t kIsProgram = 0x08000000;      // DF_1_PIE

constexpr std::uint64_t kPage = 4096;

class DynamicReader {
  public:
    DynamicReader(std::string_view bytes, const ElfTarget& target)
        : image_(bytes, target), file_(image_.file()), is_mips_(target.machine == EM_MIPS) {}

    ElfDynamic Read();

  private:
    void ReadKind();
    void ReadMemory();
    void ReadRunPath();
    std::uint64_t CountSymbols() const;
    std::uint64_t CountHashed(std::uint64_t table) const;
    void ReadVersionNeeds();
    void ReadVersionOffers();
    void ReadSymbols();

    std::uint64_t U32(const char* what, std::uint64_t offset) const {
        return file_.Field(what, offset, {0, 0}, 4);
    }
    std::uint64_t Entry(std::uint64_t tag) const { return image_.Entry(tag); }

    ElfImage image_;
    const ElfReader& file_;
    bool is_mips_;
    ElfDynamic found_;
};

// A library may name a loader as well, to be started by hand; it has a name of its own.
void DynamicReader::ReadKind() {
    found_.type = static_cast<unsigned>(file_.Field("the ELF header", 0, kFileType, 2));
    const ElfSegment* const interpreter = image_.FindSegment(PT_INTERP);
    if (interpreter != nullptr) {
        found_.interpreter = file_.Text("the name of the loader", interpreter->offset,
                                        interpreter->offset + interpreter->size);
    }
    found_.is_program = found_.type == ET_EXEC || (Entry(DT_FLAGS_1) & kIsProgram) != 0 ||
                        (interpreter != nullptr && !image_.HasEntry(DT_SONAME));
    found_.has_dynamic_section = image_.FindSegment(PT_DYNAMIC) != nullptr;
    found_.has_gnu_hash =
        image_.HasEntry(DT_GNU_HASH) || (is_mips_ && image_.HasEntry(kMipsHashTable));
    found_.has_hash = image_.HasEntry(DT_HASH);
    found_.has_packed_relocations = image_.HasEntry(kPackedRelocations);
    found_.relocates_code = image_.HasEntry(DT_TEXTREL) || (Entry(DT_FLAGS) & DF_TEXTREL) != 0;
    found_.refuses_dlopen = (Entry(DT_FLAGS_1) & DF_1_NOOPEN) != 0;
}

void DynamicReader::ReadMemory() {
    std::uint64_t first = UINT64_MAX;
    std::uint64_t end = 0;
    for (const ElfSegment& segment : image_.segments()) {
        if (segment.type == PT_LOAD) {
            first = std::min(first, segment.address / kPage * kPage);
            end = std::max(end, segment.address + segment.memory);
        }
    }
    found_.memory = end > first ? end - first : 0;
    const ElfSegment* const stack = image_.FindSegment(PT_GNU_STACK);
    found_.stack = stack == nullptr             ? ElfStack::kUnsaid
                   : (stack->flags & PF_X) != 0 ? ElfStack::kExecutable
                                                : ElfStack::kPlain;
    const ElfSegment* const per_thread = image_.FindSegment(PT_TLS);
    found_.thread_local_bytes = per_thread != nullptr ? per_thread->memory : 0;
}

// The newer entry puts the older one out of force.
void DynamicReader::ReadRunPath() {
    const bool is_newer = image_.HasEntry(DT_RUNPATH);
    if (is_newer || image_.HasEntry(DT_RPATH)) {
        found_.run_path = image_.Name(Entry(is_newer ? DT_RUNPATH : DT_RPATH));
        found_.run_path_is_inherited = !is_newer;
    }
}

// The symbol table has no count of its own but on MIPS: its hash table knows.
std::uint64_t DynamicReader::CountSymbols() const {
    const std::uint64_t plain = Entry(DT_HASH);
    if (plain != 0) {
        return U32("the hash table", image_.OffsetOf("the hash table", plain) + 4);
    }
    if (is_mips_) {
        return Entry(DT_MIPS_SYMTABNO);
    }
    const std::uint64_t hashed = Entry(DT_GNU_HASH);
    return hashed != 0 ? CountHashed(image_.OffsetOf("the hash table", hashed)) : 0;
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

// Counts the records of a table of versions, which may overlap.
class RecordBudget {
  public:
    explicit RecordBudget(std::uint64_t file_size) : left_(file_size / sizeof(Elf32_Vernaux)) {}

    void Take() {
        if (left_-- == 0) {
            throw DamagedElf("the versions are more than the file can hold");
        }
    }

  private:
    std::uint64_t left_;
};

// Both classes have the same records here.
void DynamicReader::ReadVersionNeeds() {
    const char* const what = "the table of versions";
    const std::uint64_t table = Entry(DT_VERNEED);
    const std::uint64_t count = Entry(DT_VERNEEDNUM);
    RecordBudget budget(file_.size());
    std::uint64_t library = table != 0 ? image_.OffsetOf(what, table) : 0;
    for (std::uint64_t i = 0; table != 0 && i < count; ++i) {
        budget.Take();
        const std::uint64_t names = file_.Field(what, library, {2, 2}, 2);
        ElfVersionNeeds needs;
        needs.library = image_.Name(U32(what, library + offsetof(Elf32_Verneed, vn_file)));
        std::uint64_t version = library + U32(what, library + offsetof(Elf32_Verneed, vn_aux));
        for (std::uint64_t j = 0; j < names; ++j) {
            budget.Take();
            const std::uint64_t flags = file_.Field(
                what, version,
                {offsetof(Elf32_Vernaux, vna_flags), offsetof(Elf64_Vernaux, vna_flags)}, 2);
            needs.versions.push_back(
                {image_.Name(U32(what, version + offsetof(Elf32_Vernaux, vna_name))),
                 (flags & VER_FLG_WEAK) != 0});
            if (SplitVersion(needs.versions.back().name)) {
                NoteVersion(needs.versions.back().name, found_.versions);
            }
            const std::uint64_t next_name = U32(what, version + offsetof(Elf32_Vernaux, vna_next));
            if (next_name == 0) {
                break;
            }
            version += next_name;
        }
        found_.version_needs.push_back(std::move(needs));
        const std::uint64_t next = U32(what, library + offsetof(Elf32_Verneed, vn_next));
        if (next == 0) {
            break;
        }
        library += next;
    }
}

void DynamicReader::ReadVersionOffers() {
    const char* const what = "the table of own versions";
    const std::uint64_t table = Entry(DT_VERDEF);
    const std::uint64_t count = Entry(DT_VERDEFNUM);
    RecordBudget budget(file_.size());
    std::uint64_t version = table != 0 ? image_.OffsetOf(what, table) : 0;
    for (std::uint64_t i = 0; table != 0 && i < count; ++i) {
        budget.Take();
        const std::uint64_t flags = file_.Field(
            what, version, {offsetof(Elf32_Verdef, vd_flags), offsetof(Elf64_Verdef, vd_flags)}, 2);
        const std::uint64_t name = version + U32(what, version + offsetof(Elf32_Verdef, vd_aux));
        if ((flags & VER_FLG_BASE) == 0) {  // which is the library's own name
            found_.version_offers.insert(
                image_.Name(U32(what, name + offsetof(Elf32_Verdaux, vda_name))));
        }
        const std::uint64_t next = U32(what, version + offsetof(Elf32_Verdef, vd_next));
        if (next == 0) {
            break;
        }
        version += next;
    }
}

void DynamicReader::ReadSymbols() {
    const char* const what = "the table of symbols";
    const std::uint64_t count = Entry(DT_SYMTAB) != 0 ? CountSymbols() : 0;
    const std::uint64_t table = count != 0 ? image_.OffsetOf(what, Entry(DT_SYMTAB)) : 0;
    const std::size_t step = file_.SizeOf(kSymbolSize);
    file_.CheckRange(what, table, count * step);
    for (std::uint64_t i = 1; i < count; ++i) {
        const std::uint64_t at = table + i * step;
        const auto info = static_cast<unsigned>(file_.Field(what, at, kSymbolInfo, 1));
        const unsigned visibility =
            ELF32_ST_VISIBILITY(static_cast<unsigned>(file_.Field(what, at, kSymbolOther, 1)));
        if (ELF32_ST_BIND(info) == STB_LOCAL || visibility == STV_HIDDEN ||
            visibility == STV_INTERNAL) {
            continue;
        }
        const bool is_defined = file_.Field(what, at, kSymbolSection, 2) != SHN_UNDEF;
        if (is_defined) {
            found_.exports.push_back({image_.Name(file_.Field(what, at, kSymbolName, 4)),
                                      ELF32_ST_TYPE(info), file_.Word(what, at, kSymbolBytes)});
        } else if (ELF32_ST_BIND(info) != STB_WEAK) {
            found_.imports.push_back(image_.Name(file_.Field(what, at, kSymbolName, 4)));
        }
    }
    std::sort(found_.exports.begin(), found_.exports.end(),
              [](const ElfExport& one, const ElfExport& other) { return one.name < other.name; });
}

ElfDynamic DynamicReader::Read() {
    ReadKind();
    ReadMemory();
    ReadRunPath();
    found_.own_name = image_.HasEntry(DT_SONAME) ? image_.Name(Entry(DT_SONAME)) : "";
    for (const std::uint64_t name : image_.needed()) {
        found_.needed.push_back(image_.Name(name));
    }
    ReadVersionNeeds();
    ReadVersionOffers();
    ReadSymbols();
    return found_;
}

}  // namespace

ElfDynamic ReadElfDynamic(std::string_view bytes, const ElfTarget& target) {
    if (target.bits_class != ELFCLASS32 && target.bits_class != ELFCLASS64) {
        throw DamagedElf("the ELF header is of neither class");
    }
    return DynamicReader(bytes, target).Read();
}

std::optional<ElfVersion> SplitVersion(const std::string& name) {
    const std::size_t joint = name.rfind('_');
    if (joint == std::string::npos || joint + 1 >= name.size() ||
        std::isdigit(static_cast<unsigned char>(name[joint + 1])) == 0) {
        return std::nullopt;
    }
    return ElfVersion{name.substr(0, joint), name.substr(joint + 1)};
}

std::string NoteVersion(const std::string& name, std::map<std::string, std::string>& highest) {
    const ElfVersion version = SplitVersion(name).value_or(ElfVersion{name, ""});
    std::string& most = highest[version.family];
    if (IsHigherVersion(version.number, most)) {
        most = version.number;
    }
    return version.family;
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
