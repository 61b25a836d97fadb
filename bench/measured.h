// The part of a program whose instructions count.
#pragma once

#include <functional>

/// Runs the work. The counting scripts know this function by its name, and by asking for no passes
/// at all: what lies outside, such as making a track, is not measured.
extern "C" [[gnu::noinline]] void bench_measured(const std::function<void()>& work,
                                                 unsigned passes);
