// What a host must not do, as far as its calls tell. Each function adds what it finds to the call
// and looks at nothing but what it is given; whoever calls it holds the guard's lock.
#pragma once

#include "guard/call.h"
#include "guard/calls_in_progress.h"
#include "guard/parser_table.h"

namespace guard {

// Before a call is passed on.

/// Finds the call's parser, or what became of the handle.
void find_parser(Call& call, ParserTable& parsers);

/// Calls of other threads.
void check_overlaps(Call& call, const CallsInProgress& calls);

/// Calls that this thread is in the midst of, if it is in a callback. May decide that the call is
/// not passed on.
void check_callback(Call& call, const CallsInProgress& calls);

/// What is wrong with the call by itself, or by what the parser was told before.
void check_arguments(Call& call);

// Afterwards.

/// Keeps of a call what later rules ask for.
void follow(const Call& call);

/// What a parser is released with; `waiting` is the number of its cues that nobody took.
void check_release(Call& call, unsigned waiting);

/// @param took_ms how long the call took
void check_time(Call& call, unsigned slow_ms, unsigned long took_ms);

}  // namespace guard
