#include "tools/check/track_checker.h"

#include <cstddef>

#include "tools/check/track_check.h"
#include "tools/check/track_report.h"
#include "tools/console/failure.h"
#include "tools/host/track_reader.h"

namespace quill::check {
namespace {

std::string ReadAll(host::TrackReader& reader, console::Progress& progress) {
    std::string bytes;
    while (const std::optional<host::Chunk> chunk = reader.Next()) {
        if (reader.offset() > kLargestTrack) {
            throw console::Failure(console::kExitUsage,
                                   reader.name() + ": a track may have up to " +
                                       std::to_string(kLargestTrack) + " bytes");
        }
        bytes.append(chunk->data.get(), chunk->size);
        if (progress.IsDue()) {
            progress.Show(reader.name() + ": " + std::to_string(reader.offset() >> 10) +
                          " KiB read");
        }
    }
    return bytes;
}

}  // namespace

Sums TrackChecker::Check(const std::string& track, const TrackPrinter::Write& write,
                         console::Progress& progress) {
    host::TrackReader reader(track, std::nullopt);
    const std::string bytes = ReadAll(reader, progress);
    TrackPrinter printer(reader.name(), options_.printing, write);
    TrackReport report(reader.name(), printer, progress, filters_.For(track));
    TrackCheck check(module_, capture_, bytes, options_.chunk_size, options_.video_pts, report);
    check.Run(static_cast<std::size_t>(reader.offset()));
    progress.Wipe();
    printer.Finish(report.sums());
    return report.sums();
}

}  // namespace quill::check
