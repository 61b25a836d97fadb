// Plays one track through the module the way a player would.
#ifndef TOOLS_CUES_TRACK_PLAYER_H_
#define TOOLS_CUES_TRACK_PLAYER_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"
#include "tools/host/parser_handle.h"
#include "tools/host/track_reader.h"

namespace quill::cues {

// Feeds chunk after chunk, asks for the result after each, and at the end feeds the line feeds
// that release a last cue. Whatever goes wrong on the way is said on standard error, with the
// bytes of the track that it concerns. One object plays one track.
class TrackPlayer {
  public:
    // All that is given must outlive the player.
    TrackPlayer(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                host::TrackReader& track, host::CueSink& sink);

    // Says nothing of what goes wrong.
    void BeQuiet() { quiet_ = true; }
    void SetVideoPts(unsigned long ticks) { parser_.SetVideoPts(ticks); }

    // Returns true when the track was read to its end and every call returned, false when it was
    // rejected (it is not read any further) or the module threw. Throws Failure when the track
    // cannot be read, and what the sink throws.
    bool Play();

  private:
    enum class Fate { kTaken, kRejected };

    Fate Feed(const host::Chunk& chunk, bool first);
    bool IsRejected(const host::Chunk& first_chunk);

    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    host::TrackReader& track_;
    host::CueSink& sink_;
    host::ParserHandle parser_;
    void Say(const std::string& message) const;

    bool threw_ = false;
    bool quiet_ = false;
};

}  // namespace quill::cues

#endif  // TOOLS_CUES_TRACK_PLAYER_H_
