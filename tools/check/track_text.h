// A track in memory, cut into lines, blocks and chunks the way the module cuts it.
//
// Only where things are is found out here. What becomes of them is asked of the module.
#ifndef TOOLS_CHECK_TRACK_TEXT_H_
#define TOOLS_CHECK_TRACK_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quill::check {

// A line of a track. It ends in LF, CR LF or CR, or with the track.
struct Line {
    std::size_t begin;      // of its first byte in the track
    std::string_view all;   // without line end
    std::string_view text;  // the same up to the first zero byte, where the module cuts it
    std::size_t end;        // behind its line end
    bool ended;             // it has a line end

    bool is_cut() const { return text.size() < all.size(); }
    // No more than one byte counts, a line feed included, so a zero byte can make a line blank.
    bool is_blank() const { return text.size() + (is_cut() ? 0 : 1) <= 1; }
};

// The line that begins there; the track must go on there.
Line LineAt(std::string_view track, std::size_t begin);

// Up to ten lines that the module reads as one cue, or fails to.
struct Block {
    std::size_t begin;
    std::size_t end;        // behind its last line
    std::size_t fed_end;    // behind the blank line that ends it
    std::size_t completed;  // the byte that lets the module read it; the track's size if none does
    std::uint32_t first_line;
    std::uint32_t line_count;
    bool is_rest;  // of a block that was cut after ten lines
    bool is_open;  // nothing in the track ends it
};

// Hands out the blocks of a track, from the place behind its header on.
class BlockReader {
  public:
    // The track must outlive the reader. `line` is the number of the line at `begin`.
    BlockReader(std::string_view track, std::size_t begin, std::uint32_t line)
        : track_(track), at_(begin), line_(line) {}

    std::optional<Block> Next();

  private:
    bool SkipBlankLines();

    std::string_view track_;
    std::size_t at_;
    std::uint32_t line_;
    bool behind_cut_ = false;
};

// Counts lines up to places in a track that never lie before the one asked for last.
class LineCounter {
  public:
    // The track must outlive the counter.
    explicit LineCounter(std::string_view track) : track_(track) {}

    // The number of the line that holds the byte.
    std::uint32_t LineOf(std::size_t offset);

  private:
    std::string_view track_;
    std::size_t begin_ = 0;  // of the line
    std::uint32_t line_ = 1;
};

// Which bytes are fed together. The first chunk always holds the whole first line, as the module
// looks at no later one when that is cut off.
class ChunkPlan {
  public:
    // Without a chunk size these are the chunks in which host::TrackReader reads a file.
    ChunkPlan(std::string_view track, std::optional<std::uint32_t> chunk_size);

    // Chunks of these sizes, one at least. They make up the track, but for a line end that was
    // added to it: that is in none.
    ChunkPlan(std::string_view track, const std::vector<std::size_t>& sizes);

    std::size_t count() const { return count_; }
    // 0 for chunks that were given one by one.
    std::size_t chunk_size() const { return chunk_size_; }
    std::size_t Begin(std::size_t index) const;
    std::size_t End(std::size_t index) const { return Begin(index + 1); }
    // The chunk that holds the byte; count() for what is behind the track.
    std::size_t IndexOf(std::size_t offset) const;

  private:
    std::size_t track_size_;
    std::size_t first_size_;
    std::size_t chunk_size_;
    std::size_t count_;
    std::vector<std::size_t> ends_;  // of chunks that were given one by one
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_TEXT_H_
