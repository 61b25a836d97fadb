// Reads a track, checks it and prints what was found.
#ifndef TOOLS_CHECK_TRACK_CHECKER_H_
#define TOOLS_CHECK_TRACK_CHECKER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/check/code_filter.h"
#include "tools/check/sums.h"
#include "tools/check/track_printer.h"
#include "tools/check/track_text.h"
#include "tools/console/progress.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"
#include "tools/host/track_reader.h"

namespace quill::check {

// Two copies of a track must fit into the memory of a 32-bit program.
constexpr std::uint32_t kLargestTrack = 256u << 20;

struct CheckOptions {
    Printing printing;
    // Without one the track is played as `quill cues` plays it.
    std::optional<std::uint32_t> chunk_size;
    std::uint32_t video_pts = 0;
    std::optional<CodePrefixes> selected;
    std::optional<CodePrefixes> ignored;
    bool shows_progress;
};

class TrackChecker {
  public:
    // All that is given must outlive the checker; the capture must collect.
    TrackChecker(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                 const CheckOptions& options)
        : module_(module),
          capture_(capture),
          options_(options),
          filters_(options.selected, options.ignored) {}

    // `track` is a file, or "-" for standard input. Throws Failure when it cannot be read or is too
    // large, and what `write` throws.
    Sums Check(const std::string& track, const TrackPrinter::Write& write,
               console::Progress& progress);
    // The same for what was fed in chunks of these sizes, of which there is one at least; `name` is
    // what the findings call it.
    Sums CheckFed(const std::string& name, std::string bytes, const std::vector<std::size_t>& sizes,
                  const TrackPrinter::Write& write, console::Progress& progress);
    // The same for what the reader has, which is at its beginning.
    Sums Check(host::TrackReader& reader, const TrackPrinter::Write& write,
               console::Progress& progress);

  private:
    Sums CheckBytes(const std::string& name, std::string_view bytes, std::size_t size,
                    const ChunkPlan& plan, const TrackPrinter::Write& write,
                    console::Progress& progress);

    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    const CheckOptions& options_;
    TrackFilters filters_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_CHECKER_H_
