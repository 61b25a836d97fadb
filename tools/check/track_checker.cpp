#include "tools/check/track_checker.h"

#include <cstddef>

#include "tools/check/track_check.h"
#include "tools/check/track_report.h"

namespace quill::check {

Sums TrackChecker::Check(const std::string& track, const TrackPrinter::Write& write,
                         console::Progress& progress) {
    host::TrackReader reader(track, std::nullopt);
    return Check(reader, write, progress);
}

Sums TrackChecker::Check(host::TrackReader& reader, const TrackPrinter::Write& write,
                         console::Progress& progress) {
    const std::string bytes = reader.ReadAll(kLargestTrack, [&reader, &progress] {
        if (progress.IsDue()) {
            progress.Show(reader.name() + ": " + std::to_string(reader.offset() >> 10) +
                          " KiB read");
        }
    });
    return CheckBytes(reader.name(), bytes, static_cast<std::size_t>(reader.offset()),
                      ChunkPlan(bytes, options_.chunk_size), write, progress);
}

Sums TrackChecker::CheckFed(const std::string& name, std::string bytes,
                            const std::vector<std::size_t>& sizes, const TrackPrinter::Write& write,
                            console::Progress& progress) {
    const std::size_t size = bytes.size();
    if (bytes.find_first_of("\r\n") == std::string::npos) {
        bytes += '\n';
    }
    return CheckBytes(name, bytes, size, ChunkPlan(bytes, sizes), write, progress);
}

Sums TrackChecker::CheckBytes(const std::string& name, std::string_view bytes, std::size_t size,
                              const ChunkPlan& plan, const TrackPrinter::Write& write,
                              console::Progress& progress) {
    TrackPrinter printer(name, options_.printing, write);
    TrackReport report(name, printer, progress, filters_.For(name));
    TrackCheck check(module_, capture_, bytes, plan, options_.video_pts, report);
    check.Run(size);
    progress.Wipe();
    printer.Finish(report.sums());
    return report.sums();
}

}  // namespace quill::check
