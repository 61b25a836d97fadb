// Texts and pieces of texts, as a careless host would hand them over.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address))
#endif

namespace fuzz {

/// Shows one piece of a text after the other: to a sanitizer nothing else is there, and of the
/// pieces before it, or of all of them when this is gone, rubbish is left. For that it costs a
/// fraction of an ExactBlock, since the room is not allocated anew: there are eight of them in
/// turn, so that what was kept of a text does not point to the next one.
class ShownPieces {
  public:
    explicit ShownPieces(std::string_view text) : m_data(next_room().take(text)) {}
    ShownPieces(const ShownPieces&) = delete;
    ShownPieces& operator=(const ShownPieces&) = delete;
    ~ShownPieces() { show(m_end); }

    /// The next piece, which goes up to `end`.
    std::string_view show(std::size_t end) {
        const std::size_t begin = m_end;
        std::memset(m_data + m_begin, kRubbish, begin - m_begin);
        // Only what begins at a multiple of eight can be hidden; a part of the rubbish may be seen.
        const std::size_t hidden = m_begin - m_begin % kGranule;
        ASAN_POISON_MEMORY_REGION(m_data + hidden, begin - hidden);
        ASAN_UNPOISON_MEMORY_REGION(m_data + begin, end - begin);
        m_begin = begin;
        m_end = end;
        return {m_data + begin, end - begin};
    }

    /// The piece that is shown, for those who write to it.
    char* data() { return m_data + m_begin; }

  private:
    static constexpr int kRubbish = 0xA5;
    static constexpr std::size_t kGranule = 8;  // bytes of which a sanitizer knows one thing

    /// Hidden, but for what of it is shown.
    class Room {
      public:
        char* take(std::string_view text) {
            if (text.size() + kGranule > m_capacity) {
                m_capacity = text.size() + kSpare;
                m_data.reset(new char[m_capacity]);
                ASAN_POISON_MEMORY_REGION(m_data.get(), m_capacity);
            }
            ASAN_UNPOISON_MEMORY_REGION(m_data.get(), text.size());
            text.copy(m_data.get(), text.size());
            ASAN_POISON_MEMORY_REGION(m_data.get(), text.size() + kGranule);
            return m_data.get();
        }

      private:
        static constexpr std::size_t kSpare = 512;

        std::unique_ptr<char[]> m_data;
        std::size_t m_capacity = 0;
    };

    static Room& next_room() {
        static std::array<Room, 8> rooms;
        static std::size_t next = 0;
        return rooms[next++ % rooms.size()];
    }

    char* const m_data;
    std::size_t m_begin = 0;  // of the piece that is shown
    std::size_t m_end = 0;
};

/// All of a text at once, without one more byte behind it.
class ShownText {
  public:
    explicit ShownText(std::string_view text)
        : m_pieces(text), m_shown(m_pieces.show(text.size())) {}

    std::string_view text() const { return m_shown; }
    char* data() { return m_pieces.data(); }

  private:
    ShownPieces m_pieces;
    std::string_view m_shown;
};

}  // namespace fuzz
