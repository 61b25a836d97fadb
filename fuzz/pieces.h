// Pieces of tracks by chance: sound ones mostly, and what is nearly sound.
#pragma once

#include <string>

#include "support/random_source.h"

namespace fuzz {

class Pieces {
  public:
    explicit Pieces(support::RandomSource& random) : m_random(random) {}

    std::string number();
    std::string percentage();
    std::string time();
    std::string setting();
    std::string timing_line();  ///< without its end
    std::string header_line();  ///< without its end
    std::string header_item();  ///< of a region or a timestamp map
    std::string tag();          ///< one that opens, closes or is damaged
    std::string text();         ///< words, references
    std::string span();         ///< text within a tag
    std::string block();        ///< a cue with its blank line
    std::string host_call();    ///< one of module_fuzzer.cpp's, with its introducing byte
    std::string line_end();

  private:
    support::RandomSource& m_random;
};

}  // namespace fuzz
