#pragma once

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan::imageio {

// Why there is a reader of boxes beside libheif: its version 1.15, Debian 12's, tells neither the
// turns and crops of a picture nor whether all of its data is there without decoding it, and it
// applies them itself unless it is asked for the picture as coded. Version 1.19, Debian 13's, tells
// the turns and crops (`heif_item_get_transformation_properties`): once Debian 12 is left behind,
// what is read here shrinks to where the data lies, the sizes that encoders state wrongly and the
// place of Exif.

/// Whether a file that begins so is of the HEIF family, with pictures in HEVC or AV1.
bool isHeif(Bytes head) noexcept;
/// Whether one of the family says that its pictures are in AV1.
bool isAvif(Bytes head) noexcept;

/// What the boxes of a HEIF file say about one picture.
struct HeifPicture {
    std::uint32_t item = 0;
    /// The size of the coded picture.
    PixelSize coded;
    /// Where the file states that size with width and height exchanged; absent when it is right.
    std::optional<std::uint64_t> turnedSizeAt = {};
    /// The part of the coded picture that is to be shown, in its own coordinates.
    PixelRect crop;
    /// The EXIF value that turns that part as the file's own rotations and mirrors do; absent when
    /// it has none.
    std::optional<int> orientation = {};
    int depth = 8;
    bool monochrome = false;
    /// How the colour planes are sampled, in HEVC's numbers: 0 none, 1 half by half, 2 half width,
    /// 3 full; absent when the boxes do not say.
    std::optional<int> chroma = {};
    bool hasAlpha = false;
    /// The item that is a small version of this one.
    std::optional<std::uint32_t> thumbnail = {};
    /// Where the Exif item is.
    struct Extent {
        std::uint64_t offset;
        std::uint64_t length;
    };
    std::optional<Extent> exif = {};
};

struct HeifFile {
    /// The primary picture first, then the others that are pictures in their own right.
    std::vector<HeifPicture> pictures = {};
    /// Whether the data of every item lies within the file.
    bool isComplete = true;
};

/// Reads the boxes that describe the pictures, not the pictures. Throws Failure.
HeifFile readHeifBoxes(ByteSource& source);

} // namespace zorvan::imageio
