// Files that are read and written whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace hvl::streams {

// Replaces the content of a regular file, or creates it: after a failure, a full disk or a kill the old
// content is still there. (Where the folder takes no new file, an existing one is overwritten, which a kill can cut
// short.) Symbolic links are followed; a file without permission to write is refused. Something that is not a regular
// file (a pipe, a device) is written to. Returns a status.
int write_whole_file(const char* file_name, std::span<const std::uint8_t> bytes);

// Reads at most `most` bytes and one more, so that a longer file shows. Returns a status.
int read_whole_file(const char* file_name, std::size_t most, std::vector<std::uint8_t>& bytes);

} // namespace hvl::streams
