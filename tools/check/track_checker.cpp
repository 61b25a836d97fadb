#include "tools/check/track_checker.h"

#include <cstddef>

#include "tools/check/track_check.h"
#include "tools/check/track_report.h"
#include "tools/host/track_reader.h"

namespace quill::check {

Sums TrackChecker::Check(const std::string& track, const TrackPrinter::Write& write,
                         console::Progress& progress) {
    host::TrackReader reader(track, std::nullopt);
    const std::string bytes = reader.ReadAll(kLargestTrack, [&reader, &progress] {
        if (progress.IsDue()) {
            progress.Show(reader.name() + ": " + std::to_string(reader.offset() >> 10) +
                          " KiB read");
        }
    });
    TrackPrinter printer(reader.name(), options_.printing, write);
    TrackReport report(reader.name(), printer, progress, filters_.For(track));
    TrackCheck check(module_, capture_, bytes, options_.chunk_size, options_.video_pts, report);
    check.Run(static_cast<std::size_t>(reader.offset()));
    progress.Wipe();
    printer.Finish(report.sums());
    return report.sums();
}

}  // namespace quill::check
