// Plays one track through the module the way a player would.
#ifndef TOOLS_TRACK_PLAYER_H_
#define TOOLS_TRACK_PLAYER_H_

#include <cstdint>
#include <string_view>

#include "tools/diagnostics_capture.h"
#include "tools/module_handle.h"
#include "tools/parser_handle.h"
#include "tools/track_reader.h"

namespace quill {

// Fed behind a track. One may be taken for the second half of a carriage return's line end, one
// ends a line that the track left unfinished, one is the blank line that completes the last cue.
constexpr std::string_view kClosingLineFeeds = "\n\n\n";

// Feeds chunk after chunk, asks for the result after each, and at the end feeds the line feeds
// that release a last cue. Whatever goes wrong on the way is said on standard error, with the
// bytes of the track that it concerns. One object plays one track.
class TrackPlayer {
  public:
    // All that is given must outlive the player.
    TrackPlayer(const ModuleHandle& module, DiagnosticsCapture& capture, TrackReader& track,
                CueSink& sink);

    void SetVideoPts(unsigned long ticks) { parser_.SetVideoPts(ticks); }

    // Returns true when the track was read to its end and every call returned, false when it was
    // rejected (it is not read any further) or the module threw. Throws Failure when the track
    // cannot be read, and what the sink throws.
    bool Play();

  private:
    enum class Fate { kTaken, kRejected };

    Fate Feed(const Chunk& chunk, bool first);
    bool IsRejected(const Chunk& first_chunk);

    const ModuleHandle& module_;
    DiagnosticsCapture& capture_;
    TrackReader& track_;
    CueSink& sink_;
    ParserHandle parser_;
    bool threw_ = false;
};

}  // namespace quill

#endif  // TOOLS_TRACK_PLAYER_H_
