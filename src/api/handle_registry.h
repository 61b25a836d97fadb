// The handles that are live.
#pragma once

#include "base/target.h"

namespace webvtt {

class WebVTTParser;

/// A handle is the address of its parser. The registry holds those that were created and not yet
/// released, and owns nothing but its list: parsers belong to their handles.
///
/// There is one for the module, without a lock: the host serialises Create and Release against
/// every other call. A list by design: a look-up takes time in proportion to the live handles,
/// of which a player has a few.
class HandleRegistry {
  public:
    /// Appends a parser and gives its handle.
    /// @throws std::bad_alloc
    static unsigned int u4Register(WebVTTParser* parser);

    /// Whether the handle names a parser. Nothing behind its address is touched.
    static bool fgIsLive(unsigned int handle);

    /// Removes every entry equal to the handle.
    static void vUnregister(unsigned int handle);
};

}  // namespace webvtt
