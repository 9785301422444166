#pragma once

#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/ImageWriter.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace zorvan::imageio {

/// Opens the bytes and asks for all that a reader gives. Stops the program when a picture comes out
/// at another size than was asked for. Bytes of another format are left to that format's target.
void decodeEverything(FileFormat format, std::span<const std::uint8_t> bytes);

/// Changes a file of that format a little; what is none becomes a small picture, of our own or, in
/// the formats that are only read, from the tests, so that a run begins with good files.
std::size_t mutated(FileFormat format, std::span<std::uint8_t> bytes, std::size_t maximumSize,
                    unsigned seed);

} // namespace zorvan::imageio
