// What quill reads out of ELF files that are damaged in every way: it must say so, and never read
// outside of them.
#include <elf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "support/exact_block.h"
#include "tools/host/elf_check.h"
#include "tools/host/elf_dynamic.h"
#include "tools/host/elf_reader.h"

namespace quill::host {
namespace {

std::string ModuleBytes() {
    std::ifstream file(QUILLCAPTION_BUILT_MODULE, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

ElfDynamic Read(support::ExactBlock& block) {
    return ReadElfDynamic({block.data(), block.size()}, OwnTarget());
}

bool IsReadable(support::ExactBlock& block) {
    try {
        Read(block);
        return true;
    } catch (const DamagedElf& error) {
        EXPECT_STRNE(error.what(), "");
        return false;
    }
}

// Reads a copy that ends where its memory ends, so that a sanitizer sees any step outside.
bool IsReadable(std::string_view bytes) {
    support::ExactBlock block(bytes);
    return IsReadable(block);
}

TEST(ElfDynamic, OfTheModule) {
    support::ExactBlock block(ModuleBytes());
    const ElfDynamic found = Read(block);
    EXPECT_EQ(found.type, static_cast<unsigned>(ET_DYN));
    EXPECT_EQ(std::count(found.needed.begin(), found.needed.end(), "libc.so.6"), 1);
    EXPECT_EQ(found.versions.at("CXXABI").substr(0, 3), "1.3");
    std::size_t objects = 0;
    for (const ElfExport& one : found.exports) {
        objects += one.kind == STT_OBJECT && (one.size == 144 || one.size == 24) ? 1 : 0;
    }
    EXPECT_EQ(objects, 2u);
}

// Where the last part of the file ends that is loaded.
std::size_t LoadedEnd(const std::string& bytes) {
    Elf32_Ehdr header;
    std::memcpy(&header, bytes.data(), sizeof(header));
    std::size_t end = 0;
    for (std::size_t i = 0; i < header.e_phnum; ++i) {
        Elf32_Phdr segment;
        std::memcpy(&segment, &bytes.at(header.e_phoff + i * sizeof(segment)), sizeof(segment));
        if (segment.p_type == PT_LOAD) {
            end = std::max<std::size_t>(end, segment.p_offset + segment.p_filesz);
        }
    }
    return end;
}

TEST(ElfDynamic, OfEveryTruncation) {
    const std::string whole = ModuleBytes();
    const std::size_t end = LoadedEnd(whole);
    ASSERT_GT(end, 10000u);
    ASSERT_LE(end, whole.size());
    // Byte by byte through the tables at the front and around that end, elsewhere in steps.
    std::size_t size = 0;
    while (size <= whole.size()) {
        ASSERT_EQ(IsReadable(std::string_view(whole).substr(0, size)), size >= end) << size;
        size += size < 6000 || (size > end - 50 && size < end + 50) ? 1 : whole.size() / 300;
    }
    EXPECT_TRUE(IsReadable(whole));
}

TEST(ElfDynamic, OfEveryDamagedByte) {
    support::ExactBlock block(ModuleBytes());
    std::size_t damaged = 0;
    for (std::size_t at = 0; at < std::min<std::size_t>(block.size(), 3000); ++at) {
        const char whole = block.data()[at];
        for (const char byte : {'\0', '\x7F', '\xFF'}) {
            block.data()[at] = byte;
            damaged += IsReadable(block) ? 0 : 1;
        }
        block.data()[at] = whole;
    }
    EXPECT_TRUE(IsReadable(block));
    EXPECT_GT(damaged, 20u);
}

TEST(ElfDynamic, OfHeadersAlone) {
    EXPECT_FALSE(IsReadable(""));
    EXPECT_FALSE(IsReadable(std::string(sizeof(Elf32_Ehdr) - 1, '\0')));
    support::ExactBlock block(std::string(sizeof(Elf32_Ehdr), '\0'));
    const ElfDynamic found = Read(block);
    EXPECT_TRUE(found.needed.empty());
    EXPECT_TRUE(found.exports.empty());
}

TEST(ElfDynamic, OfAnUnknownClass) {
    EXPECT_THROW(ReadElfDynamic(ModuleBytes(), {7, ELFDATA2LSB, EM_386}), DamagedElf);
}

TEST(ElfReader, ReadsBothByteOrdersAndClasses) {
    const std::string bytes = "\x01\x02\x03\x04\x05\x06\x07\x08";
    const ElfReader little_32(bytes, {ELFCLASS32, ELFDATA2LSB, EM_386});
    const ElfReader big_32(bytes, {ELFCLASS32, ELFDATA2MSB, EM_PPC});
    const ElfReader little_64(bytes, {ELFCLASS64, ELFDATA2LSB, EM_X86_64});
    const ElfReader big_64(bytes, {ELFCLASS64, ELFDATA2MSB, EM_PPC64});
    EXPECT_EQ(little_32.Word("x", 0, {0, 4}), 0x04030201u);
    EXPECT_EQ(big_32.Word("x", 0, {0, 4}), 0x01020304u);
    EXPECT_EQ(little_64.Word("x", 0, {4, 0}), 0x0807060504030201u);
    EXPECT_EQ(big_64.Word("x", 0, {4, 0}), 0x0102030405060708u);
    EXPECT_EQ(big_64.Field("x", 2, {0, 1}, 2), 0x0405u);
    EXPECT_THROW(big_64.Word("x", 1, {0, 0}), DamagedElf);
    EXPECT_THROW(big_64.Word("x", UINT64_MAX, {0, 0}), DamagedElf);
    EXPECT_THROW(big_64.CheckRange("x", 8, UINT64_MAX), DamagedElf);
    EXPECT_NO_THROW(big_64.CheckRange("x", 8, 0));
}

TEST(ElfReader, WantsTheEndOfATextInsideItsTable) {
    const std::string bytes("ab\0cd", 5);
    const ElfReader reader(bytes, {ELFCLASS32, ELFDATA2LSB, EM_386});
    EXPECT_EQ(reader.Text("x", 0, 5), "ab");
    EXPECT_EQ(reader.Text("x", 2, 5), "");
    EXPECT_THROW(reader.Text("x", 0, 2), DamagedElf);
    EXPECT_THROW(reader.Text("x", 3, 5), DamagedElf);
    EXPECT_THROW(reader.Text("x", 6, 9), DamagedElf);
}

TEST(ElfVersion, ComparesNumberByNumber) {
    EXPECT_TRUE(IsHigherVersion("3.4.21", "3.4.9"));
    EXPECT_TRUE(IsHigherVersion("2.34", "2.4"));
    EXPECT_TRUE(IsHigherVersion("2.4.1", "2.4"));
    EXPECT_FALSE(IsHigherVersion("2.4", "2.4"));
    EXPECT_FALSE(IsHigherVersion("2.4", "2.4.1"));
    EXPECT_FALSE(IsHigherVersion("2.9", "2.10"));
}

}  // namespace
}  // namespace quill::host
