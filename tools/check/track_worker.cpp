#include "tools/check/track_worker.h"

#include <cstring>
#include <new>
#include <string_view>
#include <type_traits>

namespace quill::check {

static_assert(std::is_trivially_copyable_v<Sums>);

std::string Outcome::ToBytes() const {
    std::string bytes(1 + sizeof sums, static_cast<char>(code));
    std::memcpy(&bytes[1], &sums, sizeof sums);
    return bytes + failure;
}

Outcome Outcome::FromBytes(const std::string& bytes) {
    Outcome outcome;
    outcome.code = static_cast<console::ExitCode>(bytes.at(0));
    outcome.failure = bytes.substr(1 + sizeof sums);
    std::memcpy(&outcome.sums, &bytes[1], sizeof sums);
    return outcome;
}

std::string TrackWorker::Do(const std::string& job, host::JobOutput& output) {
    console::Progress progress(options_.shows_progress, console::kProgressPause,
                               [&](std::string_view line) { output.Show(line); });
    Outcome outcome;
    try {
        const auto write = [&](std::string_view bytes) { output.Write(bytes); };
        outcome.sums = checker_.Check(job, write, progress);
    } catch (const console::Failure& failure) {
        outcome.code = failure.code();
        outcome.failure = failure.what();
    } catch (const std::bad_alloc&) {
        outcome.code = console::kExitUsage;
        outcome.failure = job + ": there is not enough memory to check it";
    }
    return outcome.ToBytes();
}

}  // namespace quill::check
