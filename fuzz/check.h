// Expectations of the fuzz targets.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the program the way that a fuzzer and a test both report.
[[noreturn]] inline void fail(const char* expectation, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: not met: %s\n", file, line, expectation);
    std::abort();
}

}  // namespace fuzz

/// Checked in every kind of build, unlike assert.
#define FUZZ_CHECK(condition) \
    ((condition) ? static_cast<void>(0) : fuzz::fail(#condition, __FILE__, __LINE__))
