// The words of a session log, and how bytes are written in it.
#include "support/session_log.h"

#include <gtest/gtest.h>

#include <string>

namespace support::session_log {
namespace {

TEST(Verbs, AreFoundByTheirNames) {
    EXPECT_EQ(Verb::kCreate, verb_of("create"));
    EXPECT_EQ(Verb::kSetVideoPts, verb_of("set_video_pts"));
    EXPECT_EQ(std::nullopt, verb_of("pfnCreate"));
    EXPECT_EQ(std::nullopt, verb_of(""));
}

TEST(ByteStrings, KeepEveryByte) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(all, bytes_of(byte_string(all)));
    EXPECT_EQ("a\xC3\xA9\xC2\x80", byte_string("a\xE9\x80"));
}

TEST(ByteStrings, HaveNoCharacterBeyondAByte) {
    for (const char* const text : {"\xC4\x80", "\xE2\x82\xAC", "a\xC3", "\x80"}) {
        EXPECT_EQ(std::nullopt, bytes_of(text)) << text;
    }
}

}  // namespace
}  // namespace support::session_log
