// Tells who uses delivered records as he must not, at the instruction that does.
#pragma once

#include <cstddef>

#include "guard/delivery_pages.h"
#include "guard/mistakes.h"

namespace guard {

/// Looks at every SIGSEGV before the host's own handler or the system does. When the address lies
/// in a delivery, a line says which record and field, and whose callback they were for. Then the
/// signal goes its way: the handler that was there before is put back, and the instruction run
/// again.
class AccessWatch {
  public:
    /// @param pages what to look in; must live as long as the watch is kept
    static void keep(const DeliveryPages& pages);

    /// Takes the signal over again when the host or an earlier access has changed its handler.
    static void renew();

    static void end();

    /// How often the mistake was found.
    static unsigned long found(Mistake mistake);
};

}  // namespace guard
