// Loading and unloading.
//
// QUILLCAPTION_LOADS: how often the module is loaded and unloaded in a row.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/support/tracks.h"
#include "support/module.h"
#include "support/parser.h"
#include "support/stdout_capture.h"

#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace support::host {
namespace {

const unsigned kDefaultLoads = 200;

/// Bytes of the heap that are in use, whoever asked for them: the module, its libraries, the
/// loader.
std::size_t heap_in_use() {
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

/// Whether the loader knows the module.
bool is_loaded() {
    void* const library = dlopen(module_path().c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (library != nullptr) {
        dlclose(library);  // RTLD_NOLOAD has counted one more user
    }
    return library != nullptr;
}

/// Whether any part of the module's file is mapped.
bool is_mapped() {
    const std::string file = module_path().substr(module_path().rfind('/'));
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.size() > file.size() &&
            line.compare(line.size() - file.size(), file.size(), file) == 0) {
            return true;
        }
    }
    return false;
}

/// Does all that a parser can do, exceptions included.
void use(const Module& module) {
    const Quiet quiet;
    Parser shown(module.methods());
    Parser dropped(module.methods());
    for (const char* name : {"live-segment.vtt", "damaged-line-setting.vtt", "damaged.vtt"}) {
        const std::string track = sample(name);
        for (const std::string_view chunk : chunks_of(track, 500, 0)) {
            for (Parser* parser : {&shown, &dropped}) {
                parser->feed(chunk);
            }
        }
        shown.take();
    }
}

TEST(Lifetime, UnloadingUnmaps) {
    ASSERT_FALSE(is_loaded());
    ASSERT_FALSE(is_mapped());
    {
        const Module module;
        EXPECT_TRUE(is_loaded());
        EXPECT_TRUE(is_mapped());
    }
    EXPECT_FALSE(is_loaded());
    EXPECT_FALSE(is_mapped());
}

TEST(Lifetime, UnloadingUnmapsAModuleThatWasUsed) {
    {
        const Module module;
        use(module);
    }
    EXPECT_FALSE(is_loaded());
    EXPECT_FALSE(is_mapped());
}

TEST(Lifetime, AModuleLoadedTwiceStaysUntilItsLastUserGoes) {
    std::optional<Module> first;
    first.emplace();
    {
        const Module second;
        EXPECT_EQ(second.descriptor(), first->descriptor());
        // A handle is the module's, whoever loaded it.
        Handle handle = 0;
        ASSERT_EQ(first->methods().create(&handle), 0);
        second.methods().release(handle);
    }
    EXPECT_TRUE(is_loaded());
    first.reset();
    EXPECT_FALSE(is_loaded());
}

TEST(Lifetime, EveryLoadBeginsWithNoHandles) {
    Handle handle = 0;
    {
        const Module module;
        ASSERT_EQ(module.methods().create(&handle), 0);
        module.methods().release(handle);
    }
    const Module module;
    const Quiet quiet;
    EXPECT_EQ(module.methods().parse(handle, "WEBVTT\n\n", 8), 2);
}

TEST(Lifetime, LoadingAndUnloadingLeaksNothing) {
    const auto load_and_use = [] {
        const Module module;
        use(module);
    };
    // The first times fill caches of the loader, of the streams and of malloc. With the guard on
    // PowerPC malloc's grows by its last block between the tenth time and the thirtieth.
    for (int i = 0; i < 50; ++i) {
        load_and_use();
    }
    const std::size_t before = heap_in_use();
    const unsigned loads = number_from_environment("QUILLCAPTION_LOADS", kDefaultLoads);
    for (unsigned i = 0; i < loads; ++i) {
        load_and_use();
    }
#ifdef __SANITIZE_ADDRESS__
    static_cast<void>(before);  // the sanitizer's own heap grows; it looks for leaks itself at exit
#else
    EXPECT_EQ(heap_in_use(), before);
#endif
    EXPECT_FALSE(is_mapped());
}

}  // namespace
}  // namespace support::host
