#include "tools/inspect/processor.h"

#include <elf.h>

#include <cstddef>
#include <cstdint>

#include "tools/host/elf_image.h"
#include "tools/inspect/attributes.h"

namespace quill::inspect {
namespace {

using host::ElfReader;
using Place = ElfReader::Place;

constexpr Place kFlags = {offsetof(Elf32_Ehdr, e_flags), offsetof(Elf64_Ehdr, e_flags)};
constexpr Place kSectionTable = {offsetof(Elf32_Ehdr, e_shoff), offsetof(Elf64_Ehdr, e_shoff)};
constexpr Place kSectionSize = {offsetof(Elf32_Ehdr, e_shentsize),
                                offsetof(Elf64_Ehdr, e_shentsize)};
constexpr Place kSectionCount = {offsetof(Elf32_Ehdr, e_shnum), offsetof(Elf64_Ehdr, e_shnum)};
constexpr Place kSectionType = {offsetof(Elf32_Shdr, sh_type), offsetof(Elf64_Shdr, sh_type)};
constexpr Place kSectionOffset = {offsetof(Elf32_Shdr, sh_offset), offsetof(Elf64_Shdr, sh_offset)};
constexpr Place kSectionBytes = {offsetof(Elf32_Shdr, sh_size), offsetof(Elf64_Shdr, sh_size)};

constexpr std::uint64_t kArmAttributes = 0x70000003;  // SHT_ARM_ATTRIBUTES
constexpr std::uint64_t kMipsAbiFlags = 0x70000003;   // PT_MIPS_ABIFLAGS

// The ways to pass numbers: two files go together when they have one in common.
enum FloatMode : unsigned { kHard = 1, kSoft = 2, kSingle = 4, kFr0 = 8, kFr1 = 16, kFre = 32 };

struct FloatAbi {
    const char* name;
    unsigned modes;
};

// By the number that the attribute has. kFr0, kFr1 and kFre are what the registers can be set to.
constexpr FloatAbi kMipsFloat[] = {
    {"", 0},
    {"hard-float ABI (FP32)", kFr0 | kFre},
    {"hard-float ABI (single)", kSingle},
    {"soft-float ABI", kSoft},
    {"hard-float ABI (old FP64)", kFr1},
    {"hard-float ABI (FPXX)", kFr0 | kFr1 | kFre},
    {"hard-float ABI (FP64)", kFr1},
    {"hard-float ABI (FP64A)", kFr1 | kFre},
};
constexpr FloatAbi kPowerFloat[] = {
    {"", 0},
    {"hard-float ABI", kHard},
    {"soft-float ABI", kSoft},
    {"hard-float ABI (single)", kSingle},
};

struct Word {
    std::uint64_t value;
    const char* text;
};

constexpr Word kArmArchitecture[] = {
    {1, "ARMv4"},    {2, "ARMv4T"},    {3, "ARMv5T"},    {4, "ARMv5TE"}, {5, "ARMv5TEJ"},
    {6, "ARMv6"},    {7, "ARMv6KZ"},   {8, "ARMv6T2"},   {9, "ARMv6K"},  {10, "ARMv7"},
    {11, "ARMv6-M"}, {12, "ARMv6S-M"}, {13, "ARMv7E-M"}, {14, "ARMv8"},  {22, "ARMv9"},
};
constexpr Word kArmFloatingPoint[] = {
    {1, "VFPv1"}, {2, "VFPv2"},     {3, "VFPv3"},    {4, "VFPv3-D16"},
    {5, "VFPv4"}, {6, "VFPv4-D16"}, {7, "ARMv8 FP"}, {8, "ARMv8 FP-D16"},
};
constexpr Word kArmThumb[] = {{1, "Thumb-1"}, {2, "Thumb-2"}, {3, "Thumb"}};
constexpr Word kArmSimd[] = {{1, "NEON"}, {2, "NEON with FMA"}, {3, "NEON of ARMv8"}};
constexpr Word kMipsArchitecture[] = {
    {0, "MIPS I"},   {1, "MIPS II"},  {2, "MIPS III"},  {3, "MIPS IV"},
    {4, "MIPS V"},   {5, "MIPS32"},   {6, "MIPS64"},    {7, "MIPS32r2"},
    {8, "MIPS64r2"}, {9, "MIPS32r6"}, {10, "MIPS64r6"},
};
constexpr Word kPowerVector[] = {{2, "AltiVec"}, {3, "SPE"}};

template <std::size_t count>
std::string TextOf(const Word (&words)[count], std::uint64_t value) {
    for (const Word& word : words) {
        if (word.value == value) {
            return word.text;
        }
    }
    return "";
}

class ProcessorReader {
  public:
    ProcessorReader(std::string_view bytes, const host::ElfTarget& target)
        : image_(bytes, target),
          file_(image_.file()),
          flags_(file_.Field("the ELF header", 0, kFlags, 4)) {}

    Processor Read(unsigned machine);

  private:
    Attributes ReadSection(std::uint64_t type, const char* vendor) const;
    std::uint64_t MipsFloat() const;
    void ReadArm();
    void ReadMips();
    void ReadPower();

    void Add(const std::string& word) {
        if (!word.empty()) {
            found_.words.push_back(word);
        }
    }
    void SetFloat(const FloatAbi& abi) {
        found_.float_abi = abi.name;
        found_.float_modes = abi.modes;
        Add(abi.name);
    }

    host::ElfImage image_;
    const ElfReader& file_;
    std::uint64_t flags_;
    Processor found_;
};

// Of the first section of that type. Sections may be stripped, or behind the end of what was
// copied.
Attributes ProcessorReader::ReadSection(std::uint64_t type, const char* vendor) const {
    const char* const what = "the table of sections";
    try {
        const std::uint64_t table = file_.Word("the ELF header", 0, kSectionTable);
        const std::uint64_t size = file_.Field("the ELF header", 0, kSectionSize, 2);
        const std::uint64_t count = file_.Field("the ELF header", 0, kSectionCount, 2);
        for (std::uint64_t i = 0; table != 0 && i < count; ++i) {
            const std::uint64_t at = table + i * size;
            if (file_.Field(what, at, kSectionType, 4) == type) {
                return ReadAttributes(file_, file_.Word(what, at, kSectionOffset),
                                      file_.Word(what, at, kSectionBytes), vendor);
            }
        }
    } catch (const host::DamagedElf&) {
        return {};
    }
    return {};
}

void ProcessorReader::ReadArm() {
    constexpr std::uint64_t kHardFloat = 0x400;  // EF_ARM_ABI_FLOAT_HARD
    constexpr std::uint64_t kSoftFloat = 0x200;
    constexpr std::uint64_t kInRegisters = 1;
    constexpr std::uint64_t kEitherWay = 3;
    Attributes tags = ReadSection(kArmAttributes, "aeabi");
    const auto profile = static_cast<char>(tags[7]);
    const std::string architecture = TextOf(kArmArchitecture, tags[6]);
    const bool has_profile = profile == 'A' || profile == 'R' || profile == 'M';
    const bool is_said = architecture.find('-') != std::string::npos;
    Add(architecture +
        (has_profile && !architecture.empty() && !is_said ? std::string("-") + profile : ""));
    if (!architecture.empty()) {
        found_.arm_level = static_cast<unsigned>(architecture[4] - '0');
    }
    Add(TextOf(kArmThumb, tags[9]));
    Add(TextOf(kArmFloatingPoint, tags[10]));
    Add(TextOf(kArmSimd, tags[12]));
    const std::uint64_t passing = tags[28];
    if ((flags_ & kHardFloat) != 0 || passing == kInRegisters) {
        SetFloat({"hard-float ABI", kHard});
    } else if (passing != kEitherWay && (!architecture.empty() || (flags_ & kSoftFloat) != 0)) {
        SetFloat({"soft-float ABI", kSoft});
    }
    Add(flags_ >> 24 != 0 ? "EABI " + std::to_string(flags_ >> 24) : "no EABI");
}

std::uint64_t ProcessorReader::MipsFloat() const {
    constexpr Place kFloatAbi = {7, 7};
    const host::ElfSegment* const abi_flags = image_.FindSegment(kMipsAbiFlags);
    if (abi_flags != nullptr) {
        return file_.Field("the table of ABI flags", abi_flags->offset, kFloatAbi, 1);
    }
    return ReadSection(SHT_GNU_ATTRIBUTES, "gnu")[4];
}

void ProcessorReader::ReadMips() {
    constexpr std::uint64_t kNan2008 = 0x400;  // EF_MIPS_NAN2008
    constexpr std::uint64_t kN32 = 0x20;       // EF_MIPS_ABI2
    constexpr std::uint64_t kAbi = 0xF000;
    constexpr std::uint64_t kO32 = 0x1000;
    constexpr std::uint64_t kMicroMips = 0x02000000;
    constexpr std::uint64_t kMips16 = 0x04000000;
    Add(TextOf(kMipsArchitecture, flags_ >> 28));
    Add((flags_ & kMicroMips) != 0 ? "microMIPS" : "");
    Add((flags_ & kMips16) != 0 ? "MIPS16" : "");
    if (!file_.is_64()) {
        found_.call_abi = (flags_ & kN32) != 0      ? "n32 ABI"
                          : (flags_ & kAbi) == kO32 ? "o32 ABI"
                                                    : "";
        Add(found_.call_abi);
    }
    const std::uint64_t number = MipsFloat();
    if (number > 0 && number < std::size(kMipsFloat)) {
        SetFloat(kMipsFloat[number]);
    }
    found_.nan = (flags_ & kNan2008) != 0 ? "NaN of 2008" : "legacy NaN";
    Add(found_.nan);
}

void ProcessorReader::ReadPower() {
    Attributes tags = ReadSection(SHT_GNU_ATTRIBUTES, "gnu");
    const std::uint64_t number = tags[4] & 3u;
    if (number != 0) {
        SetFloat(kPowerFloat[number]);
    }
    Add(TextOf(kPowerVector, tags[8]));
}

Processor ProcessorReader::Read(unsigned machine) {
    if (machine == EM_ARM) {
        ReadArm();
    } else if (machine == EM_MIPS) {
        ReadMips();
    } else if (machine == EM_PPC) {
        ReadPower();
    }
    return found_;
}

}  // namespace

Processor ReadProcessor(std::string_view bytes, const host::ElfTarget& target) {
    return ProcessorReader(bytes, target).Read(target.machine);
}

std::string DescribeMismatch(const Processor& file, const Processor& library) {
    const auto differ = [](const std::string& one, const std::string& other) {
        return !one.empty() && !other.empty() && one != other;
    };
    if (file.float_modes != 0 && library.float_modes != 0 &&
        (file.float_modes & library.float_modes) == 0) {
        return "it has the " + file.float_abi + ", the library the " + library.float_abi;
    }
    if (differ(file.nan, library.nan)) {
        return "it has the " + file.nan + ", the library the " + library.nan;
    }
    if (differ(file.call_abi, library.call_abi)) {
        return "it has the " + file.call_abi + ", the library the " + library.call_abi;
    }
    return "";
}

}  // namespace quill::inspect
