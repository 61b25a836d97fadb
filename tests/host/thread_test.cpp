// Parsers on threads of their own: whatever the module keeps during a call belongs to one parser.
//
// QUILLCAPTION_ROUNDS: how often every thread plays its track.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "host/support/tracks.h"
#include "support/module.h"
#include "support/notation.h"
#include "support/parser.h"
#include "support/stdout_capture.h"

namespace support::host {
namespace {

const unsigned kDefaultRounds = 24;
constexpr unsigned kCues = 50;

/// The text of a cue, long enough to be carried in many pieces; no two threads have the same.
std::string text_of(unsigned thread, unsigned cue) {
    return std::string(1 + cue % 40, static_cast<char>('a' + thread)) + std::to_string(cue);
}

/// Cues with all that has buffers or tables behind it: CR LF, times, settings, tags, references.
std::string cues_of(unsigned thread) {
    std::string track;
    for (unsigned cue = 0; cue < kCues; ++cue) {
        const std::string text = text_of(thread, cue);
        track += text + "\r\n00:" + std::to_string(10 + thread) +
                 ".125 --> 01:" + std::to_string(10 + cue) + ".500 line:" + std::to_string(cue) +
                 " size:" + std::to_string(10 + thread) + "% position:" + std::to_string(cue) +
                 "%\r\n<c." + text + ">" + text + "</c> &amp; <b>" + text + "</b>\r\nsecond " +
                 text + "\r\n\r\n";
    }
    return track;
}

using Lines = std::vector<std::string>;

/// Feeds the cues in chunks of a size and takes what they complete after each.
Lines play(Parser& parser, std::string_view cues, std::size_t size) {
    Lines lines;
    for (const std::string_view chunk : chunks_of(cues, size, 0)) {
        parser.feed(chunk);
        for (const CueRecord& cue : parser.take()) {
            lines.push_back(describe(cue));
        }
    }
    return lines;
}

class Threads : public testing::TestWithParam<unsigned> {};

TEST_P(Threads, DoNotDisturbEachOther) {
    const unsigned rounds = number_from_environment("QUILLCAPTION_ROUNDS", kDefaultRounds);
    const Module module;
    const Quiet quiet;
    struct Player {
        std::unique_ptr<Parser> parser;
        std::string cues;
        Lines wanted;
        unsigned wrong_rounds = 0;
    };
    std::vector<Player> players(GetParam());
    for (unsigned i = 0; i < players.size(); ++i) {
        Player& one = players[i];
        one.cues = cues_of(i);
        one.parser = std::make_unique<Parser>(module.methods());
        one.parser->feed("WEBVTT\r\n\r\n");
        one.wanted = play(*one.parser, one.cues, one.cues.size());  // alone
        ASSERT_EQ(one.wanted.size(), kCues);
    }
    std::vector<std::thread> threads;
    for (Player& one : players) {
        threads.emplace_back([&one, rounds] {
            for (unsigned round = 0; round < rounds; ++round) {
                const Lines lines = play(*one.parser, one.cues, 1 + round % 80);
                one.wrong_rounds += lines != one.wanted ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Player& one : players) {
        EXPECT_EQ(one.wrong_rounds, 0u);
        EXPECT_EQ(one.parser->complaint(), "");
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Threads, testing::Values(2u, 8u));

}  // namespace
}  // namespace support::host
