// Dialogue, as subtitle tracks hold it.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

constexpr unsigned kDefaultSeed = 1;

/// A track of at least so many bytes, the same one for the same seed on every machine.
///
/// One or two lines of 25 to 40 characters a cue. A fifth of the cues have an identifier, a third
/// have settings, a quarter have markup; some lines hold a character reference, some words hold
/// letters of more than one byte. Every cue parses, so a player is given exactly *pCueCount cues.
std::string make_dialogue(std::size_t size, unsigned* pCueCount = nullptr,
                          unsigned seed = kDefaultSeed);

/// A track of plain cues only: one line, no identifier, no settings, no markup.
std::string make_plain_cues(unsigned count);

}  // namespace bench
