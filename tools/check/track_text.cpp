#include "tools/check/track_text.h"

#include <algorithm>

#include "tools/host/track_reader.h"

namespace quill::check {
namespace {

constexpr std::uint32_t kMostLines = 10;

// The size of the first line with its end; more than kLongestFirstLine is fed unfinished.
std::size_t FirstLineSize(std::string_view track) {
    const std::size_t line_end = track.find_first_of("\r\n");
    return std::min(line_end == std::string_view::npos ? track.size() : line_end + 1,
                    host::TrackReader::kLongestFirstLine);
}

// Without a chunk size the reader hands out what it has read, until the first line is among it.
std::size_t FirstChunkSize(std::string_view track, std::optional<std::uint32_t> chunk_size) {
    constexpr std::size_t kRead = host::TrackReader::kReadSize;
    const std::size_t line = FirstLineSize(track);
    return chunk_size
               ? std::max<std::size_t>(line, std::min<std::size_t>(*chunk_size, track.size()))
               : std::min((line + kRead - 1) / kRead * kRead, track.size());
}

bool IsLineEnd(char byte) {
    return byte == '\n' || byte == '\r';
}

}  // namespace

Line LineAt(std::string_view track, std::size_t begin) {
    const std::string_view rest = track.substr(begin);
    const auto size =
        static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), IsLineEnd) - rest.begin());
    const bool is_pair = rest.substr(size, 2) == "\r\n";
    Line line{begin, rest.substr(0, size), {}, begin + size, size < rest.size()};
    line.text = line.all.substr(0, line.all.find('\0'));
    if (line.ended) {
        line.end += is_pair ? 2 : 1;
    }
    return line;
}

// False at the end of the track.
bool BlockReader::SkipBlankLines() {
    while (at_ < track_.size()) {
        const Line line = LineAt(track_, at_);
        // An unfinished last line is no blank line yet: it may go on in what is fed next.
        if (!line.ended || !line.is_blank()) {
            return true;
        }
        at_ = line.end;
        ++line_;
        behind_cut_ = false;
    }
    return false;
}

std::optional<Block> BlockReader::Next() {
    if (!SkipBlankLines()) {
        return std::nullopt;
    }
    Block block{at_, at_, at_, track_.size(), line_, 0, behind_cut_, true};
    behind_cut_ = false;
    while (at_ < track_.size()) {
        const Line line = LineAt(track_, at_);
        at_ = line.end;
        ++line_;
        block.fed_end = line.end;
        const bool ends = line.ended && line.is_blank();
        if (!ends) {
            block.end = line.end;
            ++block.line_count;
        }
        behind_cut_ = !ends && line.ended && block.line_count == kMostLines;
        if (ends || behind_cut_) {
            block.completed = line.begin + line.all.size();
            block.is_open = false;
            break;
        }
    }
    return block;
}

std::uint32_t LineCounter::LineOf(std::size_t offset) {
    while (begin_ < track_.size()) {
        const Line line = LineAt(track_, begin_);
        if (line.end > offset) {
            break;
        }
        begin_ = line.end;
        ++line_;
    }
    return line_;
}

ChunkPlan::ChunkPlan(std::string_view track, std::optional<std::uint32_t> chunk_size)
    : track_size_(track.size()),
      first_size_(FirstChunkSize(track, chunk_size)),
      chunk_size_(chunk_size.value_or(host::TrackReader::kReadSize)),
      count_(1 + (track_size_ - first_size_ + (chunk_size_ - 1)) / chunk_size_) {}

ChunkPlan::ChunkPlan(std::string_view track, const std::vector<std::size_t>& sizes)
    : track_size_(track.size()), first_size_(0), chunk_size_(0), count_(sizes.size()) {
    std::size_t end = 0;
    for (const std::size_t size : sizes) {
        ends_.push_back(end += size);
    }
}

std::size_t ChunkPlan::Begin(std::size_t index) const {
    if (index == 0) {
        return 0;
    }
    if (!ends_.empty()) {
        return ends_[std::min(index, count_) - 1];
    }
    // The product cannot wrap: the chunks before this one lie in the track.
    return index >= count_ ? track_size_ : first_size_ + (index - 1) * chunk_size_;
}

std::size_t ChunkPlan::IndexOf(std::size_t offset) const {
    if (offset >= track_size_) {
        return count_;
    }
    if (!ends_.empty()) {
        return static_cast<std::size_t>(std::upper_bound(ends_.begin(), ends_.end(), offset) -
                                        ends_.begin());
    }
    return offset < first_size_ ? 0 : 1 + (offset - first_size_) / chunk_size_;
}

}  // namespace quill::check
