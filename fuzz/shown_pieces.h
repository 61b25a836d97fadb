// Small pieces of a text, as a careless host would hand them over.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "support/exact_block.h"

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address))
#endif

namespace fuzz {

/// Shows one piece of a text after the other: to a sanitizer nothing else is there, and of the
/// pieces before it rubbish is left. Costs less than an ExactBlock for each.
class ShownPieces {
  public:
    explicit ShownPieces(std::string_view text) : m_block(text) {
        ASAN_POISON_MEMORY_REGION(m_block.data(), m_block.size());
    }
    ShownPieces(const ShownPieces&) = delete;
    ShownPieces& operator=(const ShownPieces&) = delete;
    ~ShownPieces() { ASAN_UNPOISON_MEMORY_REGION(m_block.data(), m_block.size()); }

    /// The next piece, which goes up to `end`.
    std::string_view show(std::size_t end) {
        const std::size_t begin = m_end;
        std::memset(m_block.data() + m_begin, kRubbish, begin - m_begin);
        // Only what begins at a multiple of eight can be hidden; a part of the rubbish may be seen.
        const std::size_t hidden = m_begin - m_begin % 8;
        ASAN_POISON_MEMORY_REGION(m_block.data() + hidden, begin - hidden);
        ASAN_UNPOISON_MEMORY_REGION(m_block.data() + begin, end - begin);
        m_begin = begin;
        m_end = end;
        return {m_block.data() + begin, end - begin};
    }

  private:
    static constexpr int kRubbish = 0xA5;

    support::ExactBlock m_block;
    std::size_t m_begin = 0;  // of the piece that is shown
    std::size_t m_end = 0;
};

}  // namespace fuzz
