// Memory for the records of one delivery.
#include "parser/record_arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <utility>
#include <vector>

namespace webvtt {
namespace {

/// Fills what it takes with a pattern of its own, so that overlaps show.
class CheckedArena {
  public:
    void take(std::size_t size) {
        void* const memory = m_arena.pvTake(size);
        ASSERT_NE(memory, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 8, 0u) << size;
        const int pattern = static_cast<int>(m_taken.size() % 255 + 1);
        std::memset(memory, pattern, size);
        m_taken.push_back({static_cast<unsigned char*>(memory), size});
    }

    void expect_intact() const {
        for (std::size_t index = 0; index < m_taken.size(); ++index) {
            const auto [memory, size] = m_taken[index];
            for (std::size_t byte = 0; byte < size; ++byte) {
                ASSERT_EQ(memory[byte], index % 255 + 1) << index;
            }
        }
    }

    void free_all() {
        m_taken.clear();
        m_arena.vFreeAll();
    }

  private:
    RecordArena m_arena;
    std::vector<std::pair<unsigned char*, std::size_t>> m_taken;
};

TEST(RecordArena, PiecesAreAlignedAndDoNotOverlap) {
    CheckedArena arena;
    for (int round = 0; round < 3; ++round) {
        for (std::size_t size = 1; size < 300; ++size) {
            arena.take(size);
        }
        arena.expect_intact();
        arena.free_all();
    }
}

// Around the size from which a piece gets a slab of its own, and a slab's end.
TEST(RecordArena, PiecesOfEverySizeClass) {
    CheckedArena arena;
    for (const std::size_t size : {1008u, 1016u, 1017u, 1023u, 1024u, 1025u, 1032u, 4079u, 4080u,
                                   4088u, 4089u, 4096u, 4097u, 100000u}) {
        arena.take(size);
        arena.take(49);
        arena.take(size);
    }
    arena.expect_intact();
}

TEST(RecordArena, FillsASlabToItsEnd) {
    CheckedArena arena;
    for (int piece = 0; piece < 2000; ++piece) {
        arena.take(8);
    }
    arena.expect_intact();
}

TEST(RecordArena, UsesItsMemoryAgain) {
    RecordArena arena;
    std::set<void*> places;
    for (int round = 0; round < 100; ++round) {
        places.insert(arena.pvTake(64));
        arena.vFreeAll();
    }
    EXPECT_EQ(places.size(), 1u);
}

TEST(RecordArena, FreeingNothingIsHarmless) {
    RecordArena arena;
    arena.vFreeAll();
    arena.vFreeAll();
    EXPECT_NE(arena.pvTake(1), nullptr);
    arena.vFreeAll();
    arena.vFreeAll();
}

TEST(RecordArena, OnlyLargePieces) {
    CheckedArena arena;
    arena.take(5000);
    arena.free_all();
    arena.take(6000);
    arena.take(1);
    arena.expect_intact();
    arena.free_all();
    arena.take(7000);
    arena.expect_intact();
}

#ifdef WEBVTT_RED_ZONES
TEST(RecordArena, UnderTheSanitizerOnlyPiecesMayBeTouched) {
    RecordArena arena;
    for (int round = 0; round < 2; ++round) {
        std::vector<char*> pieces;
        for (const std::size_t size : {8u, 64u, 5000u}) {
            pieces.push_back(static_cast<char*>(arena.pvTake(size)));
            EXPECT_EQ(__asan_region_is_poisoned(pieces.back(), size + 1), pieces.back() + size);
        }
        arena.vFreeAll();
        EXPECT_TRUE(__asan_address_is_poisoned(pieces.front()));  // in the slab that is kept
    }
}
#endif

}  // namespace
}  // namespace webvtt
