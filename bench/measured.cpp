#include "bench/measured.h"

#include "support/stdout_capture.h"

namespace bench {

const support::Methods& load_module() {
    static const auto* const kModule = new support::Module;
    return kModule->methods();
}

std::FILE* silence_standard_output() {
    static const support::Quiet kQuiet;
    return kQuiet.open_original();
}

}  // namespace bench

void bench_measured(const std::function<void()>& work, unsigned passes) {
    for (unsigned pass = 0; pass < passes; ++pass) {
        work();
    }
}
