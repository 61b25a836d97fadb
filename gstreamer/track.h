// One track on its way through a parser of the module. Knows nothing of GStreamer.
#ifndef GSTREAMER_TRACK_H_
#define GSTREAMER_TRACK_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "gstreamer/loaded_module.h"

namespace gstquillcaption {

// A copy of a record, which lives during the module's callback only.
struct Caption {
    WebvttCueNode record;  // its pointers are null
    std::string text;
};

// Feeds the module one line a call, however the track arrives: the module wants the first line and
// header lines whole, and what a damaged cue takes with it is the rest of its call. So what comes
// out does not depend on where buffers end. A line ends behind a line feed or a carriage return; a
// line feed that follows a carriage return stands at the front of the next line, where the module
// drops it.
//
// Calls must not overlap. They wait for ModuleLock().
class Track {
  public:
    // More of a line than this is no caption: the track is given up.
    static constexpr std::size_t kLongestLine = 1 << 20;

    // The module must outlive the track. `quiet` keeps what the module prints from standard output.
    // Throws std::bad_alloc when the module makes no parser.
    Track(const LoadedModule& module, std::uint32_t video_time, bool quiet);
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;
    ~Track();

    void Feed(std::string_view bytes);
    // The stream was interrupted: half a line is no line, and the next one begins a block.
    void Break();
    // The track is over; the last cue waits for a blank line, which the track may lack.
    void Finish();

    // The cues that were completed since the last time, in the track's order.
    std::vector<Caption> TakeCaptions();
    // What went wrong since the last time, in words.
    std::vector<std::string> TakeTroubles();

  private:
    static void OnEvent(WEBVTT_EVENT_T event, void* tag, void* info);
    void FeedLine(std::string_view line);
    int Parse(std::string_view line);
    void Deliver();
    void GiveUp(const std::string& trouble);

    const WebvttModuleMethods& methods_;
    const bool quiet_;
    unsigned int parser_ = 0;
    std::string line_;  // what has arrived of it
    bool began_ = false;
    bool after_return_ = false;  // the last line ended in a carriage return
    bool given_up_ = false;
    std::vector<Caption> captions_;
    std::vector<std::string> troubles_;
};

}  // namespace gstquillcaption

#endif  // GSTREAMER_TRACK_H_
