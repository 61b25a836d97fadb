// Reads a track as it arrives and cuts it into the chunks that a player would feed.
#ifndef TOOLS_HOST_TRACK_READER_H_
#define TOOLS_HOST_TRACK_READER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/console/descriptor.h"

namespace quill::host {

// What one call feeds: a block of its own of exactly that size, so that a tool which watches
// memory sees every read beyond the end.
struct Chunk {
    Chunk(const char* bytes, unsigned int byte_count, std::uint64_t first_byte);

    std::unique_ptr<char[]> data;
    unsigned int size;
    std::uint64_t offset;  // of its first byte in the track
};

// Fed behind a track. One may be taken for the second half of a carriage return's line end, one
// ends a line that the track left unfinished, one is the blank line that completes the last cue.
constexpr std::string_view kClosingLineFeeds = "\n\n\n";

class TrackReader {
  public:
    // More of a first line than this is fed unfinished.
    static constexpr std::size_t kLongestFirstLine = 1 << 20;
    static constexpr std::size_t kReadSize = 64 << 10;

    // `name` is a file, or "-" for standard input. Chunks have `chunk_size` bytes, the last one
    // what is left; or, without a chunk size, what one read of at most kReadSize bytes returns.
    // Throws Failure when the file cannot be opened.
    TrackReader(std::string name, std::optional<unsigned int> chunk_size);

    // A track that is held already. It takes an explicit chunk size to get the chunks of a file.
    TrackReader(std::string name, std::string bytes, unsigned int chunk_size);

    // The next chunk, or none after the last one. The first is as large as the first line,
    // whatever the chunk size, because the module looks at no later one when that is cut off;
    // when the track ends inside its first line, that gets the line feed which ends it. Throws
    // Failure when reading failed, after all that was read before has been returned.
    std::optional<Chunk> Next();

    // All chunks together. Calls `progress` after each of them. Throws Failure when the track has
    // more than `most` bytes, and what Next throws.
    std::string ReadAll(std::uint64_t most, const std::function<void()>& progress);

    // "standard input" for "-".
    const std::string& name() const { return name_; }
    // How many bytes of the track the chunks have held so far.
    std::uint64_t offset() const { return offset_; }

  private:
    bool ReadMore();
    Chunk TakeFirst();
    Chunk TakeUnfinishedTrack();
    Chunk Take(std::size_t size);
    std::size_t buffered() const { return buffer_.size() - taken_; }

    std::string name_;
    std::optional<unsigned int> chunk_size_;
    console::Descriptor file_;
    std::string buffer_;     // bytes read
    std::size_t taken_ = 0;  // how many of them were returned
    std::uint64_t offset_ = 0;
    bool began_ = false;
    bool ended_ = false;
    int error_ = 0;  // errno of the read that failed
};

}  // namespace quill::host

#endif  // TOOLS_HOST_TRACK_READER_H_
