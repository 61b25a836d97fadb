// A player that does nothing with its cues but count them.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

#include "support/module.h"

namespace bench {

/// One parser of a module, released at the end. The module must outlive it.
class Player {
  public:
    explicit Player(const support::Methods& methods);
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

    const support::Methods& m_methods;
    support::Handle m_handle = 0;
    std::size_t m_cue_count = 0;
    std::size_t m_call_count = 0;  // feeding and delivering
};

/// Loads the module, or ends the program. It is never unloaded: a profiler that writes its names
/// when the program ends must still find them.
const support::Methods& load_module();

/// Sends standard output, where the module's diagnostics go, to the null device. What a bench has
/// to say goes to the stream that this returns, the standard output of before.
std::FILE* silence_standard_output();

}  // namespace bench
