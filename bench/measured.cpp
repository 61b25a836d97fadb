#include "bench/measured.h"

void bench_measured(const std::function<void()>& work, unsigned passes) {
    for (unsigned pass = 0; pass < passes; ++pass) {
        work();
    }
}
