// Sample tracks, and ways to cut and change them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace support::host {

/// The bytes of a sample track. Ends the program when there is no such file.
std::string sample(const std::string& name);

/// The names of all sample tracks, sorted.
std::vector<std::string> sample_names();

/// The size of a track's first line, its line end included.
std::size_t first_line_size(std::string_view track);

/// The size of a track up to the byte with which its header section ends.
std::size_t header_size(std::string_view track);

/// A track of line feeds with another line end.
std::string with_line_ends(std::string_view track, std::string_view line_end);

/// Chunks of so many bytes; the first one is enlarged to at least the size given.
std::vector<std::string_view> chunks_of(std::string_view track, std::size_t size,
                                        std::size_t first_size);

/// A track of line feeds cut behind each blank line: a header section, then a block each.
std::vector<std::string_view> blocks_of(std::string_view track);

}  // namespace support::host
