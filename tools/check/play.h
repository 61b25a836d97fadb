// Plays a whole track the way a player does, and notes which cues arrive from which chunk.
#ifndef TOOLS_CHECK_PLAY_H_
#define TOOLS_CHECK_PLAY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/check/header_check.h"
#include "tools/check/lone_parser.h"
#include "tools/check/track_report.h"
#include "tools/check/track_text.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::check {

// Shows what is added to every time.
constexpr std::string_view kCueAtZero = "00:00.000 --> 00:00.000\nx\n\n";

// A delivered cue, without its text.
struct PlayedCue {
    double start;
    double end;
    std::uint32_t fingerprint;
    std::size_t chunk;  // ChunkPlan::count() for the line feeds behind the track
};

// A chunk that the module gave up before its end.
struct EarlyEnd {
    std::size_t chunk;
    Fate fate;                  // kError, kRefused or kThrew
    std::uint32_t header_line;  // of the map that made the module throw; 0 when a block did
};

struct Play {
    const EarlyEnd* FindEarlyEnd(std::size_t first_chunk, std::size_t last_chunk) const;

    std::vector<PlayedCue> cues;       // in the order of the track
    std::vector<EarlyEnd> early_ends;  // in the order of the track
    std::size_t header_chunk = 0;      // in which the header ended
    double offset = 0;                 // what the map and the video's time add to every time
};

class Player {
  public:
    // All that is given must outlive the player.
    Player(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
           std::string_view track, const ChunkPlan& plan, const ThrowingMaps& throwing_maps,
           std::uint32_t video_pts);

    // Shows on the way how far it has come.
    Play Run(TrackReport& report);

  private:
    class Taker;

    void Feed(std::string_view bytes, std::size_t chunk);
    void NoteEnd(std::optional<int> result, std::size_t chunk, std::size_t cues_before);
    bool EndsByError();
    double AskOffset();

    host::DiagnosticsCapture& capture_;
    std::string_view track_;
    const ChunkPlan& plan_;
    const ThrowingMaps& throwing_maps_;
    host::ParserHandle parser_;
    Play play_;
    bool in_header_ = true;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_PLAY_H_
