// One call of the host.
#pragma once

#include <cstddef>

#include "guard/bytes.h"
#include "guard/mistakes.h"
#include "quillcaption/quillcaption.h"

namespace guard {

struct Parser;

enum class Function : unsigned char {
    kCreate,
    kRelease,
    kParse,
    kSetEventNty,
    kGetParseResult,
    kSetVideoPts,
    kUnloading,  ///< not a call of the table, but the host's doing as well
};

/// As it is named in the method table.
const char* name_of(Function function);

/// What is known of a call while it is made. The arguments are the host's; the rest is found out by
/// the guard before it passes the call on, and after that.
struct Call {
    explicit Call(Function called, unsigned given = 0) : function(called), handle(given) {}

    Function function;

    // Arguments, of those functions that have them.
    unsigned handle;  ///< that of Create is known afterwards
    unsigned* new_handle = nullptr;
    const void* data = nullptr;
    unsigned size = 0;
    void* tag = nullptr;
    WebvttEventNotify notify = nullptr;
    unsigned long ticks = 0;

    // Known before the call is passed on.
    unsigned long number = 0;  ///< counts the host's calls from 1
    long thread = 0;
    const void* frame = nullptr;  ///< where its thread's stack was
    Parser* parser = nullptr;     ///< null when the handle is not live
    unsigned long parser_number = 0;
    unsigned inner = 0;  ///< the module's handle; 0, which it refuses, when there is none
    bool is_passed_on = true;
    long long begun_ns = 0;

    // Known afterwards.
    int result = 0;
    bool has_thrown = false;
    Findings found;
    Bytes printed;  ///< when it is recorded
};

}  // namespace guard
