// Where a track is cut into chunks does not matter, but for a few documented places.
//
// QUILLCAPTION_PLANS: how many random plans each sample is played by.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/support/tracks.h"
#include "support/module.h"
#include "support/notation.h"
#include "support/parser.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

using Lines = std::vector<std::string>;
using Chunks = std::vector<std::string_view>;

const unsigned kDefaultPlans = 100;

/// What a host has of a track in the end.
struct Playback {
    Lines cues;
    std::vector<Ending> endings;  // of each chunk
};

/// Feeds a track's chunks and takes the cues after each, as a player does.
Playback play(const Methods& methods, const Chunks& chunks) {
    const Quiet quiet;
    Parser parser(methods);
    Playback playback;
    const auto feed = [&](std::string_view chunk) {
        playback.endings.push_back(parser.feed(chunk));
        for (const CueRecord& cue : parser.take()) {
            playback.cues.push_back(describe(cue));
        }
    };
    for (const std::string_view chunk : chunks) {
        feed(chunk);
    }
    feed("\n\n\n");  // whatever the track ends in, its last cue is complete now
    EXPECT_EQ(parser.complaint(), "");
    return playback;
}

/// As chunks end inside the header section, and later.
std::vector<Ending> expected_endings(std::string_view track, const Chunks& chunks) {
    std::vector<Ending> endings;
    std::size_t fed = 0;
    for (const std::string_view chunk : chunks) {
        fed += chunk.size();
        endings.push_back(fed < header_size(track) ? Ending::kHeader : Ending::kOk);
    }
    endings.push_back(Ending::kOk);  // what play() adds
    return endings;
}

/// A random plan: a first chunk of at least the size given, then chunks of a size that suits it.
Chunks random_chunks(std::string_view track, std::size_t first_size, unsigned seed) {
    std::mt19937 random(seed);
    const std::size_t longest = std::size_t{1} << (1 + random() % 9);
    Chunks chunks;
    for (std::size_t at = 0; at < track.size(); at += chunks.back().size()) {
        const std::size_t size = 1 + random() % longest;
        chunks.push_back(track.substr(at, at == 0 ? first_size + size - 1 : size));
    }
    return chunks;
}

/// A sample whose cues no chunk border changes.
struct Sample {
    const char* name;
    std::size_t cues;        // that a player gets of it
    bool has_whole_headers;  // its header section must come in one chunk
};

void PrintTo(const Sample& one, std::ostream* out) {
    *out << one.name;
}

class Borders : public testing::TestWithParam<Sample> {
  protected:
    std::size_t first_chunk_size(std::string_view bytes) const {
        return GetParam().has_whole_headers ? header_size(bytes) : first_line_size(bytes);
    }

    /// Plays a track by a plan and compares with the track in one chunk.
    void expect_same(std::string_view bytes, const Chunks& chunks, const std::string& plan) {
        const Playback cut = play(m_module.methods(), chunks);
        ASSERT_EQ(cut.cues, whole) << plan;
        ASSERT_EQ(cut.endings, expected_endings(bytes, chunks)) << plan;
    }

    const Module m_module;
    const std::string track = sample(GetParam().name);
    const Lines whole = play(m_module.methods(), {track}).cues;
};

TEST_P(Borders, TheSampleHasItsCues) {
    EXPECT_EQ(whole.size(), GetParam().cues);
}

TEST_P(Borders, MayLieAnywhereBehindTheFirstLine) {
    for (std::size_t at = first_line_size(track); at < track.size(); ++at) {
        const std::string_view bytes = track;
        ASSERT_NO_FATAL_FAILURE(expect_same(track, {bytes.substr(0, at), bytes.substr(at)},
                                            "cut at byte " + std::to_string(at)));
    }
}

class ManyBorders : public Borders {};

TEST_P(ManyBorders, MayLieBehindEveryByte) {
    expect_same(track, chunks_of(track, 1, first_chunk_size(track)), "byte by byte");
}

TEST_P(ManyBorders, MayLieAtRandom) {
    const unsigned plans = number_from_environment("QUILLCAPTION_PLANS", kDefaultPlans);
    for (unsigned seed = 1; seed <= plans; ++seed) {
        ASSERT_NO_FATAL_FAILURE(expect_same(track,
                                            random_chunks(track, first_chunk_size(track), seed),
                                            "plan " + std::to_string(seed)));
    }
}

TEST_P(ManyBorders, DoNotMindOtherLineEnds) {
    for (const std::string_view line_end : {"\r\n", "\r"}) {
        const std::string changed = with_line_ends(track, line_end);
        const std::string name = quote(line_end);
        ASSERT_NO_FATAL_FAILURE(expect_same(changed, {changed}, name + ", whole"));
        ASSERT_NO_FATAL_FAILURE(expect_same(
            changed, chunks_of(changed, 1, first_chunk_size(changed)), name + ", byte by byte"));
        for (unsigned seed = 1; seed <= 10; ++seed) {
            ASSERT_NO_FATAL_FAILURE(
                expect_same(changed, random_chunks(changed, first_chunk_size(changed), seed),
                            name + ", plan " + std::to_string(seed)));
        }
    }
}

const Sample kSamples[] = {
    {"dialogue.vtt", 15, false}, {"markup.vtt", 21, false},     {"regions.vtt", 5, false},
    {"settings.vtt", 35, false}, {"live-segment.vtt", 5, true},
};

std::string test_name(const testing::TestParamInfo<Sample>& info) {
    std::string name = info.param.name;
    const auto is_no_letter = [](char c) { return c == '.' || c == '-'; };
    std::replace_if(name.begin(), name.end(), is_no_letter, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, Borders, testing::ValuesIn(kSamples), test_name);
INSTANTIATE_TEST_SUITE_P(Of, ManyBorders, testing::ValuesIn(kSamples), test_name);

// A carriage return that ends a chunk is remembered until a chunk begins with a line feed, so a
// track of mixed line ends may be cut once anywhere, but not at random.
INSTANTIATE_TEST_SUITE_P(OfMixedLineEnds, Borders,
                         testing::Values(Sample{"line-endings.vtt", 7, false}), test_name);

// Damaged tracks: what shares a chunk with the damage is lost, what comes by itself is not.

class Damage : public testing::Test {
  protected:
    std::size_t cues_in_one_chunk(const std::string& name) const {
        return play(m_module.methods(), {sample(name)}).cues.size();
    }
    std::size_t cues_block_by_block(const std::string& name) const {
        return play(m_module.methods(), blocks_of(sample(name))).cues.size();
    }

    const Module m_module;
};

TEST_F(Damage, AStartTagThatIsNotKnownTakesTheRestOfItsChunk) {
    EXPECT_EQ(cues_in_one_chunk("damaged.vtt"), 3u);
    EXPECT_EQ(cues_block_by_block("damaged.vtt"), 5u);
}

TEST_F(Damage, ABadStartTimeTakesTheRestOfItsChunk) {
    EXPECT_EQ(cues_in_one_chunk("damaged-first-block.vtt"), 0u);
    EXPECT_EQ(cues_block_by_block("damaged-first-block.vtt"), 2u);
}

TEST_F(Damage, ALineWithoutANumberTakesTheRestOfItsChunk) {
    EXPECT_EQ(cues_in_one_chunk("damaged-line-setting.vtt"), 1u);
    EXPECT_EQ(cues_block_by_block("damaged-line-setting.vtt"), 3u);
}

TEST_F(Damage, AMapOfOneItemTakesTheRestOfItsChunk) {
    EXPECT_EQ(cues_in_one_chunk("damaged-map.vtt"), 0u);
    EXPECT_EQ(cues_block_by_block("damaged-map.vtt"), 1u);
}

TEST_F(Damage, ARefusedTrackHasNoCues) {
    EXPECT_EQ(cues_in_one_chunk("rejected-mark.vtt"), 0u);
    EXPECT_EQ(cues_block_by_block("rejected-mark.vtt"), 0u);
}

// A header in more than two pieces is lost, so this map shifts cues only when it comes in one.
TEST_F(Damage, AMapInManyPiecesIsLost) {
    const std::string track = sample("live-segment.vtt");
    const Lines whole = play(m_module.methods(), {track}).cues;
    const Lines bytewise =
        play(m_module.methods(), chunks_of(track, 1, first_line_size(track))).cues;
    ASSERT_EQ(whole.size(), 5u);
    ASSERT_EQ(bytewise.size(), 5u);
    EXPECT_EQ(whole[1].substr(0, 17), "cue 3602.5 3604 \"");
    EXPECT_EQ(bytewise[1].substr(0, 17), "cue 3600.5 3602 \"");
}

}  // namespace
}  // namespace support::host
