#include "tools/check/track_check.h"

#include <algorithm>

#include "tools/check/block_check.h"
#include "tools/check/file_kind.h"
#include "tools/check/header_check.h"
#include "tools/check/play.h"
#include "tools/host/parser_handle.h"

namespace quill::check {

TrackCheck::TrackCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                       std::string_view track, ChunkPlan plan, std::uint32_t video_pts,
                       TrackReport& report)
    : module_(module),
      capture_(capture),
      track_(track),
      plan_(std::move(plan)),
      video_pts_(video_pts),
      report_(report) {}

void TrackCheck::Run(std::size_t size) {
    report_.sums().chunk_size = static_cast<std::uint32_t>(plan_.chunk_size());
    if (IsRejected()) {
        report_.Note({1, LineCounter(track_).LineOf(size - 1), 0, ByteClass::kRejected});
        report_.Say(IsFirstLineCut()
                        ? Finding(1, "signature", "the first chunk ends within the first line",
                                  "feed the whole first line in the first chunk")
                        : ExplainRejection(track_));
        report_.sums().AddBytes(ByteClass::kRejected, size);
        return;
    }
    const std::size_t begin = LineAt(track_, 0).end;
    report_.sums().AddBytes(ByteClass::kSignature, std::min(begin, size));
    Findings findings;
    HeaderCheck header(module_, capture_, track_, plan_);
    header.Run(begin, findings, report_.sums());
    report_.Note({1, header.end_line() - 1, 0, ByteClass::kSignature});

    Player player(module_, capture_, track_, plan_, header.throwing_maps(), video_pts_);
    const Play play = player.Run(report_);
    BlockCheck blocks(module_, capture_, track_, plan_, play, report_);
    blocks.Run(header.end(), header.end_line(), findings);
    report_.sums().CheckBytes(size);
}

// The first line alone decides, fed to a parser of its own.
bool TrackCheck::IsRejected() {
    const std::size_t size = std::min(LineAt(track_, 0).end, plan_.End(0));
    host::ParserHandle parser(module_, capture_);
    try {
        return size == 0 ||
               parser.Feed(track_.data(), static_cast<unsigned int>(size)) == WEBVTT_RESULT_ERROR;
    } catch (const host::ModuleThrew&) {
        return false;
    }
}

// The host's doing, and not the track's.
bool TrackCheck::IsFirstLineCut() const {
    return plan_.chunk_size() == 0 && plan_.End(0) < LineAt(track_, 0).end;
}

}  // namespace quill::check
