// Exceptions that leave the module and that nobody catches.
#pragma once

#include "guard/call.h"

namespace guard {

/// When such an exception ends the process, a line says first where it came from.
class UncaughtWatch {
  public:
    static void keep();
    static void end();

    /// To be called in the handler that passes the exception on.
    static void note_leaving(const Call& call);
    /// The thread goes on: its last exception was caught.
    static void note_caught();
};

}  // namespace guard
