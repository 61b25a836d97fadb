// The two exported objects, read word by word.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>

#include "support/cue_record.h"
#include "support/module.h"

namespace support::host {
namespace {

TEST(Descriptor, HasTheFourWordsThatALoaderReads) {
    const Module module;
    const void* const info = module.descriptor();
    EXPECT_EQ(value_at<std::uint32_t>(info, 0), 1u);
    EXPECT_STREQ(value_at<const char*>(info, 4), "quillcaption.so");
    EXPECT_EQ(value_at<const void*>(info, 8), module.symbol("WebVtt_Module_Methods"));
    for (std::size_t at = 12; at < 144; ++at) {
        EXPECT_EQ(value_at<std::uint8_t>(info, at), 0) << "at offset " << at;
    }
}

TEST(Table, HoldsTheSixEntryPointsInOrder) {
    static const char* const kNames[] = {
        "_Z24IZorWebVtt_Parser_CreatePj",
        "_Z25IZorWebVtt_Parser_Releasej",
        "_Z27IZorWebVtt_Parser_rsltParsejPKvj",
        "_Z36IZorWebVtt_Parser_vSetWebvttEventNtyjPvPFv14WEBVTT_EVENT_TS_S_E",
        "_Z33IZorWebVtt_Parser_vGetParseResultj",
        "_Z30IZorWebVtt_Parser_vSetVideoPTSjm",
    };
    const Module module;
    const void* const table = module.symbol("WebVtt_Module_Methods");
    ASSERT_NE(table, nullptr);
    std::size_t offset = 0;
    for (const char* name : kNames) {
        ASSERT_NE(module.symbol(name), nullptr) << name;
        EXPECT_EQ(value_at<const void*>(table, offset), module.symbol(name)) << name;
        offset += 4;
    }
}

TEST(Symbols, DoNotReachInside) {
    const Module module;
    EXPECT_EQ(module.symbol("_ZN6webvtt12WebVTTParser9rsltParseEPKvj"), nullptr);
    EXPECT_EQ(module.symbol("_ZTVN6webvtt12WebVTTParserE"), nullptr);
}

// The host's own allocator, exceptions and streams are the module's, so it must not bring others.
TEST(Symbols, OfTheStandardLibraryAreTheHosts) {
    const Module module;
    Dl_info info{};
    const void* const cout = module.symbol("_ZSt4cout");
    ASSERT_NE(dladdr(cout, &info), 0);
    EXPECT_EQ(cout, dlsym(RTLD_DEFAULT, "_ZSt4cout")) << info.dli_fname;
}

}  // namespace
}  // namespace support::host
