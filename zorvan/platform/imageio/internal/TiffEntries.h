#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>

#include <cstdint>
#include <span>
#include <vector>

namespace zorvan::imageio {

/// One entry of a directory of a TIFF structure.
struct TiffEntry {
    enum Type : std::uint16_t {
        byte = 1,
        ascii = 2,
        shortNumber = 3,
        longNumber = 4,
        ratio = 5,
        undefined = 7,
        signedRatio = 10,
        ieeeDouble = 12
    };

    std::uint16_t tag;
    std::uint16_t type;
    /// How many values there are.
    std::uint32_t count;
    /// In the byte order of the structure.
    Data value;
};

/// How many bytes a value of that type takes; 0 for a type that is none.
std::uint64_t sizeOfType(std::uint64_t type) noexcept;

/// How the numbers of a TIFF file are written.
struct TiffForm {
    bool bigEndian = false;
    /// With 8 bytes for a position, as in a BigTIFF.
    bool wide = false;
};

/// The entries of the directory at that place whose values can be had and take at most 16 KiB.
std::vector<TiffEntry> readTiffEntries(ByteSource& source, const TiffForm& form,
                                       std::uint64_t directory);

/// Appends a directory without a successor, its longer values behind it, to a file of an even
/// length.
void appendTiffDirectory(Data& file, std::span<const TiffEntry> entries, const TiffForm& form);

/// Appends a number of `width` bytes.
void appendNumber(Data& out, std::uint64_t value, std::size_t width, bool bigEndian);

/// A block with a first directory of those entries, in any order, and with an Exif and a GPS
/// directory below it unless they are empty.
Data exifBlockOf(std::vector<TiffEntry> first, std::span<const TiffEntry> exif,
                 std::span<const TiffEntry> gps, bool bigEndian);

} // namespace zorvan::imageio
