// The values of cue settings. Those that a host sees have the numbers of the public header.
#pragma once

#include <cstdint>

namespace webvtt {

enum class Vertical_Type : std::int32_t {
    HORIZONTAL = 0,
    VERTICAL_GROWING_LEFT = 1,  ///< "vertical:lr": hosts rely on this pairing
    VERTICAL_GROWING_RIGHT = 2  ///< "vertical:rl"
};

enum class Text_Align_Type : std::int32_t { START = 0, MIDDLE = 1, END = 2, LEFT = 3, RIGHT = 4 };

/// The alignment of a cue's line and of its position.
enum class Line_Align_Type : std::int32_t { START = 0, MIDDLE = 1, END = 2 };

}  // namespace webvtt
