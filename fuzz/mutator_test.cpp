// What the mutator does to inputs.
#include "fuzz/mutator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "api/entry_points.h"
#include "support/parser.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t largest);

/// In libFuzzer's place.
std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t /*largest*/) {
    data[size / 2] ^= 1U;
    return size;
}

namespace {

constexpr unsigned kSeeds = 4000;
constexpr char kTrack[] = "WEBVTT\n\n00:01.000 --> 00:02.000 size:50%\nHello <b>world</b>\n\n";

std::string changed(fuzz::Format format, std::string text, std::size_t largest, unsigned seed) {
    const std::size_t size = text.size();
    text.resize(std::max(size, largest));
    text.resize(
        fuzz::mutate(format, reinterpret_cast<std::uint8_t*>(text.data()), size, largest, seed));
    return text;
}

TEST(Mutator, MakesTheSameChangeForTheSameSeedAndOftenAnotherForAnother) {
    std::set<std::string> texts;
    for (unsigned seed = 0; seed < kSeeds; ++seed) {
        const std::string text = changed(fuzz::Format::kScript, kTrack, 512, seed);
        EXPECT_EQ(text, changed(fuzz::Format::kScript, kTrack, 512, seed)) << seed;
        texts.insert(text);
    }
    EXPECT_GT(texts.size(), kSeeds / 4);
}

TEST(Mutator, StaysWithinTheSizeAndLeavesSomething) {
    for (const fuzz::Format format : {fuzz::Format::kScript, fuzz::Format::kBlocks,
                                      fuzz::Format::kPayload, fuzz::Format::kValue}) {
        for (unsigned seed = 0; seed < kSeeds; ++seed) {
            for (const char* text : {"a", "\n", kTrack}) {
                const std::string result = changed(format, text, 70, seed);
                EXPECT_LE(result.size(), 70U) << seed;
                EXPECT_FALSE(result.empty()) << seed;
            }
        }
    }
}

TEST(Mutator, WritesEveryPieceOfItsFormat) {
    const struct {
        fuzz::Format format;
        std::vector<std::string> pieces;
    } cases[] = {
        {fuzz::Format::kScript,
         {"\xFFk", "\xFFv", "\xFFg", "X-TIMESTAMP-MAP=MPEGTS:", "Region: id=", "\r\n", " line:-",
          " vertical:", " align:", "</c>", "<v Bob>"}},
        {fuzz::Format::kBlocks,
         {"\xFF", " position:", " region:", "\r", "&lrm;", "<ruby>", "id\n"}},
        {fuzz::Format::kPayload, {"</rt>", "<lang", "&nbsp;", "<c.one.two", "&foo;", "<x>"}},
        {fuzz::Format::kValue, {" --> ", "4294967296", "%", "LOCAL:", "size:", "59."}},
    };
    for (const auto& [format, pieces] : cases) {
        std::string all;
        for (unsigned seed = 0; seed < kSeeds; ++seed) {
            all += changed(format, "00:01.000 --> 00:02.000\na\n\n", 512, seed) + '\x01';
        }
        for (const std::string& piece : pieces) {
            EXPECT_NE(all.find(piece), std::string::npos) << piece;
        }
    }
}

// What knows nothing of tracks leaves few of them that a cue comes of.
TEST(Mutator, LeavesTracksThatCuesComeOf) {
    const support::Methods methods = support::methods_at(WEBVTT_MODULE_INFO.prMethods);
    unsigned tracks = 0;
    for (unsigned seed = 0; seed < kSeeds; ++seed) {
        std::string text = kTrack;
        for (unsigned change = 0; change < 4; ++change) {
            text = changed(fuzz::Format::kBlocks, text, 512, seed + change * kSeeds);
        }
        support::Parser parser(methods);
        parser.feed("WEBVTT\n\n");
        parser.feed(text + "\n\n");
        tracks += parser.take().empty() ? 0 : 1;
    }
    EXPECT_GT(tracks, kSeeds / 4);
}

}  // namespace
