// Looking for a byte in a chunk from places that only move forward.
#include "base/byte_finder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/exact_block.h"

namespace webvtt {
namespace {

class FinderInChunk {
  public:
    FinderInChunk(char wanted, std::string_view chunk) : m_chunk(chunk), m_finder(wanted) {
        m_finder.start();
    }

    std::ptrdiff_t find(std::size_t from) { return m_finder.find(begin() + from, end()) - begin(); }
    char* begin() { return m_chunk.data(); }
    char* end() { return begin() + m_chunk.size(); }

  private:
    support::ExactBlock m_chunk;
    ByteFinder m_finder;
};

TEST(ByteFinder, FindsTheFirstFromEveryPlace) {
    const std::string_view text = "..x...xx.x....";
    FinderInChunk finder('x', text);
    for (std::size_t from = 0; from <= text.size(); ++from) {
        const std::size_t expected = std::min(text.find('x', from), text.size());
        EXPECT_EQ(finder.find(from), static_cast<std::ptrdiff_t>(expected)) << from;
    }
}

TEST(ByteFinder, AnswersTheSameTwice) {
    FinderInChunk zeros('\0', std::string_view("a\0b\0", 4));
    EXPECT_EQ(zeros.find(0), 1);
    EXPECT_EQ(zeros.find(0), 1);
    EXPECT_EQ(zeros.find(1), 1);
    EXPECT_EQ(zeros.find(2), 3);
    EXPECT_EQ(zeros.find(4), 4);
}

TEST(ByteFinder, AbsentByteIsTheEnd) {
    FinderInChunk finder('x', "abc");
    EXPECT_EQ(finder.find(0), 3);
    EXPECT_EQ(finder.find(2), 3);
    EXPECT_EQ(finder.find(3), 3);
    FinderInChunk empty('x', "");
    EXPECT_EQ(empty.find(0), 0);
}

TEST(ByteFinder, NullIsAnEmptyChunk) {
    ByteFinder finder('x');
    finder.start();
    EXPECT_EQ(finder.find(nullptr, nullptr), nullptr);
}

TEST(ByteFinder, ForgetsTheLastChunk) {
    support::ExactBlock chunk("..x.x");
    const char* const begin = chunk.data();
    ByteFinder finder('x');
    finder.start();
    EXPECT_EQ(finder.find(begin + 3, begin + 5), begin + 4);
    finder.start();
    EXPECT_EQ(finder.find(begin, begin + 4), begin + 2);
    EXPECT_EQ(finder.find(begin + 3, begin + 4), begin + 4);
}

TEST(ByteFinder, LooksAtNoByteTwice) {
    FinderInChunk finder('x', "....x");
    EXPECT_EQ(finder.find(0), 4);
    finder.begin()[1] = 'x';  // would be found by a second look
    EXPECT_EQ(finder.find(1), 4);
}

}  // namespace
}  // namespace webvtt
