// What a session holds that other tools can use.
#ifndef TOOLS_REPLAY_EXPORTS_H_
#define TOOLS_REPLAY_EXPORTS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/replay/session.h"

namespace quill::replay {

// What one parser was fed.
struct FedTrack {
    std::uint32_t parser = 0;
    std::uint32_t video_time = 0;  // in ticks, as it was when the first chunk was fed
    std::string bytes;
    std::vector<std::size_t> sizes;  // of the chunks
};

// Of all parsers that were fed something, in the order of their numbers.
std::vector<FedTrack> FedTracks(const Session& session);
// Of the parser of that number or, for 0, of all. Throws Failure when there is none.
std::vector<FedTrack> FedTracks(const Session& session, std::uint32_t parser);

// What findings call such a track: "session.log (parser 1)".
std::string TrackName(const std::string& log, std::uint32_t parser);

// A file of one case for `quill conform --cases` that makes the same calls and expects what was
// recorded. Throws Failure when a call was made that no case can make.
std::string WriteCase(const Session& session);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_EXPORTS_H_
