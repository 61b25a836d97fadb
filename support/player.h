// A player that does nothing with its cues but count them.
#pragma once

#include <cstddef>
#include <string_view>

#include "support/methods.h"

namespace support {

/// One parser of a module, released at the end. The module must outlive it.
class Player {
  public:
    explicit Player(const Methods& methods);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    ~Player();

    /// Feeds one chunk. An exception that leaves the module is caught, as a player would.
    void feed(std::string_view chunk);
    /// Takes the cues completed so far.
    void deliver();
    /// Feeds a text in chunks and takes the result after each.
    void feed_in_chunks(std::string_view text, std::size_t chunk_size);

    std::size_t cue_count() const { return m_cue_count; }
    std::size_t call_count() const { return m_call_count; }

  private:
    static void on_event(int event, void* tag, void* info);

    const Methods& m_methods;
    Handle m_handle = 0;
    std::size_t m_cue_count = 0;
    std::size_t m_call_count = 0;  // feeding and delivering
};

}  // namespace support
