#pragma once

#include <cstdint>

namespace zorvan::avfoundation {

/// Whether the tables of a movie in the boxes of MP4 and QuickTime have FFmpeg make no more entries
/// of its index than the file has bytes. FFmpeg makes one for each sample that a table speaks of, so
/// that a few hundred bytes could take gigabytes. `file` is of a movie that FFmpeg reads so.
bool samplesFit(int file, std::int64_t size);

} // namespace zorvan::avfoundation
