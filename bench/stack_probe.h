// How deep a piece of work goes on the stack.
#pragma once

#include <cstddef>
#include <functional>

namespace bench {

/// Runs the work on a thread of its own whose stack was painted, and looks how far down the paint
/// is gone. Counts from where the work is called; must not throw.
std::size_t stack_peak_of(const std::function<void()>& work);

}  // namespace bench
