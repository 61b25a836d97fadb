#include "tools/host/track_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/console/failure.h"
#include "tools/host/call_note.h"

namespace quill::host {
namespace {

[[noreturn]] void FailToRead(const std::string& name, int error_number) {
    throw console::Failure(console::kExitUsage, name + ": " + console::ErrorText(error_number));
}

console::Descriptor Open(const std::string& name) {
    console::Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.valid()) {
        FailToRead(name, errno);
    }
    return file;
}

}  // namespace

Chunk::Chunk(const char* bytes, unsigned int byte_count, std::uint64_t first_byte)
    : data(new char[byte_count]), size(byte_count), offset(first_byte) {
    std::memcpy(data.get(), bytes, byte_count);
}

TrackReader::TrackReader(std::string name, std::optional<unsigned int> chunk_size)
    : name_(std::move(name)), chunk_size_(chunk_size) {
    const bool is_standard_input = name_ == "-";
    name_ = is_standard_input ? "standard input" : name_;
    CallNote::Own().track.Set(name_);
    CallNote::Own().end = 0;
    if (is_standard_input) {
        file_ = console::DuplicatePrivately(STDIN_FILENO);
        if (!file_.valid()) {
            FailToRead(name_, errno);
        }
    } else {
        file_ = Open(name_);
    }
}

TrackReader::TrackReader(std::string name, std::string bytes, unsigned int chunk_size)
    : name_(std::move(name)), chunk_size_(chunk_size), buffer_(std::move(bytes)), ended_(true) {}

std::string TrackReader::ReadAll(std::uint64_t most, const std::function<void()>& progress) {
    std::string bytes;
    while (const std::optional<Chunk> chunk = Next()) {
        if (offset_ > most) {
            throw console::Failure(console::kExitUsage, name_ + ": a track may have up to " +
                                                            std::to_string(most) + " bytes");
        }
        bytes.append(chunk->data.get(), chunk->size);
        progress();
    }
    return bytes;
}

// Whether at least one more byte is in the buffer.
bool TrackReader::ReadMore() {
    if (ended_) {
        return false;
    }
    buffer_.erase(0, std::exchange(taken_, 0));
    const std::size_t old_size = buffer_.size();
    buffer_.resize(old_size + kReadSize);
    const int count = console::ReadSome(file_.get(), &buffer_[old_size], kReadSize);
    error_ = count < 0 ? errno : 0;
    ended_ = count <= 0;
    buffer_.resize(old_size + static_cast<std::size_t>(std::max(count, 0)));
    return !ended_;
}

Chunk TrackReader::Take(std::size_t size) {
    Chunk chunk(buffer_.data() + taken_, static_cast<unsigned int>(size), offset_);
    taken_ += size;
    offset_ += size;
    return chunk;
}

std::optional<Chunk> TrackReader::Next() {
    const std::size_t wanted = chunk_size_.value_or(1);
    while (buffered() < wanted && ReadMore()) {
    }
    if (buffered() == 0) {
        if (error_ != 0) {
            FailToRead(name_, error_);
        }
        return std::nullopt;
    }
    if (!std::exchange(began_, true)) {
        return TakeFirst();
    }
    return Take(std::min<std::size_t>(chunk_size_.value_or(kReadSize), buffered()));
}

Chunk TrackReader::TakeFirst() {
    std::size_t line_end = buffer_.find_first_of("\r\n");
    while (line_end == std::string::npos && buffered() < kLongestFirstLine) {
        const std::size_t searched = buffered();
        if (!ReadMore()) {
            break;
        }
        line_end = buffer_.find_first_of("\r\n", searched);
    }
    if (line_end == std::string::npos && ended_ && error_ == 0) {
        return TakeUnfinishedTrack();
    }
    const std::size_t first_line =
        std::min(line_end == std::string::npos ? buffered() : line_end + 1, kLongestFirstLine);
    const std::size_t wanted = chunk_size_.value_or(kReadSize + kLongestFirstLine);
    return Take(std::max(first_line, std::min(wanted, buffered())));
}

Chunk TrackReader::TakeUnfinishedTrack() {
    const std::size_t track_size = buffered();
    buffer_ += '\n';
    Chunk chunk = Take(track_size + 1);
    offset_ = track_size;
    return chunk;
}

}  // namespace quill::host
