// The shapes of tracks that cost must grow linearly with, hostile ones before all.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "support/methods.h"

namespace bench {

enum class Delivery { kAfterEachChunk, kAtTheEnd };

/// What a player does with one shape.
struct Play {
    std::string opening = "WEBVTT\n\n";  ///< the first chunk
    std::string text;                    ///< fed behind it, in chunks
    std::size_t chunk_size = 1460;       ///< a network packet
    Delivery delivery = Delivery::kAfterEachChunk;
    unsigned parsers = 1;  ///< all alive at once; each is fed the whole
};

/// What came of it.
struct Tally {
    std::size_t bytes = 0;
    std::size_t calls = 0;
    std::size_t cues = 0;
};

/// A kind of track whose size is one number, n, of whatever the name says.
struct Shape {
    std::string_view name;
    std::size_t n;       ///< takes about a second under an instruction counter, played at 4 n
    std::size_t full_n;  ///< a size that hurts a parser which is not linear
    Play (*make)(std::size_t n);
    std::string_view exempt = {};  ///< why cost may grow faster than n, if it may
};

const std::vector<Shape>& shapes();
/// Null when there is no such shape.
const Shape* find_shape(std::string_view name);

/// The same calls, each with one letter in it: what they cost by themselves.
Play empty_calls_of(const Play& play);

/// Plays with parsers of its own, released at the end.
Tally play_shape(const support::Methods& methods, const Play& play);

}  // namespace bench
