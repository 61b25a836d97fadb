#include "tools/host/elf_check.h"

#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"
#include "tools/host/elf_dynamic.h"
#include "tools/host/elf_reader.h"

// The ELF header of this program, where the linker has put it.
extern "C" const ElfW(Ehdr) __ehdr_start __attribute__((visibility("hidden")));

namespace quill::host {
namespace {

constexpr std::size_t kLargestModule = 256u << 20;

// e_ident, e_type and e_machine lie alike in files of both classes.
constexpr std::size_t kHeaderStart = EI_NIDENT + 2 * sizeof(std::uint16_t);

constexpr struct {
    unsigned machine;
    const char* name;
} kMachines[] = {
    {EM_386, "i386"},   {EM_X86_64, "x86-64"}, {EM_ARM, "ARM"},          {EM_AARCH64, "AArch64"},
    {EM_MIPS, "MIPS"},  {EM_PPC, "PowerPC"},   {EM_PPC64, "PowerPC 64"}, {EM_RISCV, "RISC-V"},
    {EM_S390, "S/390"}, {EM_SPARC, "SPARC"},   {EM_SPARCV9, "SPARC V9"}, {EM_68K, "Motorola 68000"},
    {EM_SH, "SuperH"},
};

[[noreturn]] void FailToReadModule(const std::string& path, const std::string& kind,
                                   int error_number) {
    throw console::Failure(console::kExitModule, "cannot read the " + kind + " " + path + ": " +
                                                     console::ErrorText(error_number));
}

bool IsBigEndian(const ElfTarget& target) {
    return target.byte_order == ELFDATA2MSB;
}

}  // namespace

bool ElfTarget::operator==(const ElfTarget& other) const {
    return bits_class == other.bits_class && byte_order == other.byte_order &&
           machine == other.machine;
}

ElfTarget OwnTarget() {
    return {__ehdr_start.e_ident[EI_CLASS], __ehdr_start.e_ident[EI_DATA], __ehdr_start.e_machine};
}

std::string ReadModuleFile(const std::string& path, const std::string& kind) {
    // Opening a pipe would wait for somebody to write into it.
    const console::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.valid()) {
        FailToReadModule(path, kind, errno);
    }
    struct stat status = {};
    if (fstat(file.get(), &status) == 0 && !S_ISREG(status.st_mode)) {
        throw console::Failure(console::kExitModule,
                               path + " is not a " + kind + ": it is not a regular file");
    }
    const std::uint64_t present =
        status.st_size < 0 ? 0 : static_cast<std::uint64_t>(status.st_size);
    std::string start(static_cast<std::size_t>(std::min<std::uint64_t>(kLargestModule, present)),
                      '\0');
    std::size_t filled = 0;
    while (filled < start.size()) {
        const int count = console::ReadSome(file.get(), &start[filled], start.size() - filled);
        if (count < 0) {
            FailToReadModule(path, kind, errno);
        }
        if (count == 0) {
            break;
        }
        filled += static_cast<std::size_t>(count);
    }
    start.resize(filled);
    return start;
}

ElfTarget ElfTargetOf(std::string_view start, const std::string& path, const std::string& kind) {
    if (start.size() < kHeaderStart || start.compare(0, SELFMAG, ELFMAG) != 0) {
        throw console::Failure(console::kExitModule,
                               path + " is not a " + kind + ": it is not an ELF file");
    }
    const auto byte = [&start](std::size_t index) {
        return static_cast<std::uint8_t>(start[index]);
    };
    ElfTarget target = {byte(EI_CLASS), byte(EI_DATA), 0};
    const std::size_t low = kHeaderStart - (IsBigEndian(target) ? 1 : 2);
    const std::size_t high = kHeaderStart - (IsBigEndian(target) ? 2 : 1);
    target.machine = static_cast<std::uint16_t>(byte(high) << 8 | byte(low));
    return target;
}

std::string MachineName(const ElfTarget& target) {
    for (const auto& known : kMachines) {
        if (known.machine == target.machine) {
            return known.name;
        }
    }
    return "machine " + std::to_string(target.machine);
}

std::string TargetName(const ElfTarget& target) {
    const std::string bits = target.bits_class == ELFCLASS64   ? "64-bit"
                             : target.bits_class == ELFCLASS32 ? "32-bit"
                                                               : "neither 32- nor 64-bit";
    const bool foreign_order = target.byte_order != OwnTarget().byte_order;
    const std::string order = !foreign_order        ? ""
                              : IsBigEndian(target) ? " big-endian"
                                                    : " little-endian";
    return bits + order + " (" + MachineName(target) + ")";
}

std::string DescribeMismatch(const std::string& path, const ElfTarget& module) {
    const ElfTarget own = OwnTarget();
    return path + " is a " + TargetName(module) + " module; this quill is a " + TargetName(own) +
           " program: use a quillcaption.so built for " + MachineName(own) +
           ", or the quill that was built beside it";
}

void CheckModuleFile(const std::string& path) {
    const std::string bytes = ReadModuleFile(path);
    const ElfTarget module = ElfTargetOf(bytes, path);
    if (!(module == OwnTarget())) {
        throw console::Failure(console::kExitModule, DescribeMismatch(path, module));
    }
    try {
        ReadElfDynamic(bytes, module);
    } catch (const DamagedElf& error) {
        throw console::Failure(console::kExitModule, path + " is damaged: " + error.what() +
                                                         "; build it again, or copy it again");
    }
}

}  // namespace quill::host
