// What the module prints, with the track's text in it hidden.
#pragma once

#include <cstddef>

namespace guard {

/// Makes of what the module prints, in its place, what it prints for the hidden track.
void hide_printed(char* bytes, std::size_t size);

}  // namespace guard
