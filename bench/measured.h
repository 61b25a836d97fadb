// What a bench program measures: the module, and the part whose instructions count.
#pragma once

#include <cstdio>
#include <functional>

#include "support/module.h"

namespace bench {

/// Loads the module, or ends the program. It is never unloaded: a profiler that writes its names
/// when the program ends must still find them.
const support::Methods& load_module();

/// Sends standard output, where the module's diagnostics go, to the null device. What a bench has
/// to say goes to the stream that this returns, the standard output of before.
std::FILE* silence_standard_output();

}  // namespace bench

/// Runs the work. The counting scripts know this function by its name, and by asking for no passes
/// at all: what lies outside, such as making a track, is not measured.
extern "C" [[gnu::noinline]] void bench_measured(const std::function<void()>& work,
                                                 unsigned passes);
