#pragma once

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan::imageio {

// Why there is a reader of boxes beside libheif: its version 1.15, Debian 12's, tells neither the
// turns and crops of a picture nor whether all of its data is there without decoding it, and what a
// file says of its tiles it believes: it leaves what they do not cover as the memory was, and
// follows a picture that is made of itself until the stack ends. So the boxes are read here, and
// libheif is given the coded pictures, one by one (HeifTiles).

/// Whether a file that begins so is of the HEIF family, with pictures in HEVC or AV1.
bool isHeif(Bytes head) noexcept;
/// Whether one of the family says that its pictures are in AV1.
bool isAvif(Bytes head) noexcept;

/// What the boxes of a HEIF file say about one picture.
struct HeifPicture {
    std::uint32_t item = 0;
    /// The size of the coded picture.
    PixelSize coded;
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

class HeifMeta;
/// Throws Failure.
HeifPicture heifPictureOf(const HeifMeta& meta, std::uint32_t item);
/// What a file of that size says about its pictures. Throws Failure.
HeifFile heifFileOf(const HeifMeta& meta, std::uint64_t size);

} // namespace zorvan::imageio
