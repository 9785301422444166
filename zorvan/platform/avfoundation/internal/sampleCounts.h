#pragma once

#include <cstdint>

namespace zorvan::avfoundation {

/// Whether the tables of a movie in the boxes of MP4 and QuickTime count no more samples than the
/// bytes of the file can hold; true as well of a file in another form. FFmpeg makes an entry of its
/// index for each sample that a table speaks of, so that a few hundred bytes would take gigabytes.
bool samplesFit(int file, std::int64_t size) noexcept;

} // namespace zorvan::avfoundation
