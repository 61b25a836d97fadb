// The arena for records beside a plain allocator: every order of sizes, slabs that are filled to
// their last byte, once new and once used again.
//
// A program of its own, for its operator new puts a band of known bytes around every block, counts
// the blocks, and looks at the bands when a block is freed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "base/red_zone.h"
#include "parser/record_arena.h"
#include "parser/webvtt_parser.h"
#include "support/stdout_capture.h"

namespace {

constexpr std::size_t kBand = 16;
constexpr unsigned char kBandByte = 0xB5;

unsigned long blocks_made = 0;
unsigned long damaged_blocks = 0;

/// What stands in front of a block, up to its first byte. Aligned as the blocks of malloc are.
struct Head {
    alignas(std::max_align_t) std::size_t size;
    alignas(std::max_align_t) unsigned char band[kBand];
};

void* make_block(std::size_t size) noexcept {
    void* const memory = std::malloc(sizeof(Head) + size + kBand);
    if (memory == nullptr) {
        return nullptr;
    }
    ++blocks_made;
    Head* const head = new (memory) Head{size, {}};
    std::memset(head->band, kBandByte, kBand);
    std::memset(reinterpret_cast<char*>(head + 1) + size, kBandByte, kBand);
    return head + 1;
}

void free_block(void* block) noexcept {
    if (block == nullptr) {
        return;
    }
    Head* const head = static_cast<Head*>(block) - 1;
    const auto* const behind = static_cast<unsigned char*>(block) + head->size;
    const auto is_whole = [](unsigned char byte) { return byte == kBandByte; };
    if (!std::all_of(head->band, head->band + kBand, is_whole) ||
        !std::all_of(behind, behind + kBand, is_whole)) {
        ++damaged_blocks;
    }
    std::free(head);
}

}  // namespace

void* operator new(std::size_t size) {
    void* const block = make_block(size);
    return block != nullptr ? block : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return make_block(size);
}
void operator delete(void* block) noexcept {
    free_block(block);
}
void operator delete(void* block, std::size_t) noexcept {
    free_block(block);
}

namespace webvtt {
namespace {

constexpr std::size_t kSlab = 4096;
constexpr std::size_t kSlabHead = 8;

/// How many blocks the pieces need, as the arena's comments say it.
class Plan {
  public:
    void take(std::size_t size) {
        const std::size_t whole = (size + 7) / 8 * 8 + kRedZone;
        if (whole <= m_free) {
            m_free -= whole;
            return;
        }
        ++m_blocks;
        if (whole <= kSlab / 4) {
            m_free = kSlab - kSlabHead - whole;
            m_has_slab = true;
        }
    }
    void free_all() { m_free = m_has_slab ? kSlab - kSlabHead : 0; }

    /// The largest piece for which there is still room.
    std::size_t room() const { return m_free > kRedZone ? m_free - kRedZone : 0; }
    unsigned blocks() const { return m_blocks; }

  private:
    std::size_t m_free = 0;
    unsigned m_blocks = 0;
    bool m_has_slab = false;
};

/// Takes pieces and writes them full, each with a byte of its own.
class Round {
  public:
    Round(RecordArena& arena, Plan& plan) : m_arena(arena), m_plan(plan) {}

    void take(std::size_t size) {
        m_plan.take(size);
        const unsigned long before = blocks_made;
        void* const piece = m_arena.pvTake(size);
        m_blocks += blocks_made - before;
        std::memset(piece, byte_of(m_pieces.size()), size);
        m_pieces.push_back({static_cast<char*>(piece), size});
    }

    void fill_the_slab() {
        if (m_plan.room() > 0) {
            take(m_plan.room());
        }
    }

    /// Whether each piece still holds what was written there.
    bool is_intact() const {
        for (std::size_t i = 0; i < m_pieces.size(); ++i) {
            const std::string_view piece = m_pieces[i];
            if (reinterpret_cast<std::size_t>(piece.data()) % 8 != 0 ||
                piece.find_first_not_of(byte_of(i)) != std::string_view::npos) {
                return false;
            }
        }
        return true;
    }

    unsigned long blocks() const { return m_blocks; }

  private:
    static char byte_of(std::size_t piece) { return static_cast<char>(piece % 255 + 1); }

    RecordArena& m_arena;
    Plan& m_plan;
    std::vector<std::string_view> m_pieces;
    unsigned long m_blocks = 0;
};

/// Takes the pieces, and then what is left of the slab, twice: the second time a slab is there.
void expect_like_a_plain_allocator(const std::vector<std::size_t>& sizes) {
    const unsigned long damaged = damaged_blocks;
    unsigned long blocks = 0;
    Plan plan;
    {
        RecordArena arena;
        for (int time = 0; time < 2; ++time) {
            Round round(arena, plan);
            for (const std::size_t size : sizes) {
                round.take(size);
            }
            round.fill_the_slab();
            ASSERT_TRUE(round.is_intact()) << testing::PrintToString(sizes);
            blocks += round.blocks();
            arena.vFreeAll();
            plan.free_all();
        }
    }
    ASSERT_EQ(blocks, plan.blocks()) << testing::PrintToString(sizes);
    ASSERT_EQ(damaged_blocks, damaged) << testing::PrintToString(sizes);
}

TEST(ArenaSizes, EveryOrder) {
    const std::size_t sizes[] = {1,    8,    48,   57,   512,  513,  520,
                                 1000, 1016, 1024, 1025, 1500, 4088, 5000};
    for (const std::size_t first : sizes) {
        for (const std::size_t second : sizes) {
            for (const std::size_t third : sizes) {
                ASSERT_NO_FATAL_FAILURE(expect_like_a_plain_allocator({first, second, third}));
            }
        }
    }
}

TEST(ArenaSizes, EverySizeInTwoSlabs) {
    for (std::size_t size = 1; size <= 1100; ++size) {
        const std::vector<std::size_t> sizes(2 * kSlab / (size + 8) + 1, size);
        ASSERT_NO_FATAL_FAILURE(expect_like_a_plain_allocator(sizes));
    }
}

/// Has a parser deliver so many cues of a text, and gives how many arrive whole.
unsigned whole_cues(WebVTTParser& parser, const std::string& text, unsigned count) {
    struct Seen {
        const std::string& text;
        unsigned whole;
    } seen{text, 0};
    parser.vSetWebvttEventNty(&seen, [](WEBVTT_EVENT_T, void* tag, void* info) {
        Seen& expected = *static_cast<Seen*>(tag);
        const auto* cue = static_cast<const WebvttDataInfo*>(info)->prCueList;
        for (; cue != nullptr; cue = cue->prNext) {
            expected.whole += cue->pcText == expected.text ? 1 : 0;
        }
    });
    const std::string block = "00:01.000 --> 00:02.000\n" + text + "\n";
    for (unsigned i = 0; i < count; ++i) {
        parser.rsltParse(block.data(), static_cast<unsigned>(block.size()));
    }
    parser.vGetParseResult();
    return seen.whole;
}

// 73 records of 56 bytes are all that a slab holds, and texts of 8 bytes would nearly fit them.
TEST(ArenaSizes, RecordsWithTheirTexts) {
    const unsigned count = 150;  // two slabs of the smallest
    for (std::size_t length = 2; length <= 64; ++length) {
        const unsigned long damaged = damaged_blocks;
        const std::string text = std::string(length - 1, 'x') + "\n";
        support::output_of([&] {
            WebVTTParser parser;
            parser.rsltParse("WEBVTT\n\n", 8);
            EXPECT_EQ(whole_cues(parser, text, count), count) << length;
            EXPECT_EQ(whole_cues(parser, text, count), count) << length;
        });
        EXPECT_EQ(damaged_blocks, damaged) << length;
    }
}

}  // namespace
}  // namespace webvtt
