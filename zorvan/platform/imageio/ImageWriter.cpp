#include <zorvan/platform/imageio/ImageWriter.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>
#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/FrameWriter.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <list>
#include <vector>

namespace zorvan::imageio {
namespace {

std::optional<Data> encodeHeic(const Frame& frame) {
    static const auto encodeFrame = ZORVAN_FUNCTION(ZORVAN_HEIF_PICTURES, zorvanEncodeHeic);
    std::optional<Data> bytes;
    if (encodeFrame)
        encodeFrame(frame, bytes);
    return bytes;
}

std::optional<Data> encodeTiff(std::span<const Frame> frames) {
    static const auto encodeFrames = ZORVAN_FUNCTION(ZORVAN_TIFF_PICTURES, zorvanEncodeTiff);
    std::optional<Data> bytes;
    if (encodeFrames)
        encodeFrames(frames, bytes);
    return bytes;
}

bool hasHeicEncoder() {
    static const auto ask = ZORVAN_FUNCTION(ZORVAN_HEIF_PICTURES, zorvanHasHeicEncoder);
    bool has = false;
    if (ask)
        ask(has);
    return has;
}

std::optional<Data> dispatched(FileFormat format, std::span<const Frame> frames) {
    switch (format) {
    case FileFormat::jpeg:
        return encodeJpeg(frames[0]);
    case FileFormat::png:
        return encodePng(frames[0]);
    case FileFormat::tiff:
        return encodeTiff(frames);
    case FileFormat::heic:
        return encodeHeic(frames[0]);
    default:
        return std::nullopt;
    }
}

/// What would not be read is not written.
bool isWritable(const Frame& frame) {
    return frame.bitmap && frame.bitmap->width() <= maximumSide &&
           frame.bitmap->height() <= maximumSide;
}

bool isArgb(const Frame& frame) { return frame.bitmap->layout() == BitmapLayout::argb; }

std::optional<Data> encodedInRgba(FileFormat format, std::span<const Frame> frames) {
    if (std::ranges::none_of(frames, isArgb))
        return dispatched(format, frames);
    std::vector<Frame> inRgba(frames.begin(), frames.end());
    std::list<Bitmap> copies;
    for (Frame& frame : inRgba) {
        std::optional<Bitmap> copy = copied(*frame.bitmap, BitmapLayout::rgba);
        if (!copy)
            return std::nullopt;
        frame.bitmap = &copies.emplace_back(std::move(*copy));
    }
    return dispatched(format, inRgba);
}

} // namespace

bool canEncode(FileFormat format) {
    return format == FileFormat::jpeg || format == FileFormat::png || format == FileFormat::tiff ||
           (format == FileFormat::heic && hasHeicEncoder());
}

std::optional<Data> encode(FileFormat format, std::span<const Frame> frames) {
    const bool isOneTooMany = frames.size() > 1 && format != FileFormat::tiff;
    if (frames.empty() || isOneTooMany || !std::ranges::all_of(frames, isWritable))
        return std::nullopt;
    try {
        return encodedInRgba(format, frames);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

bool isOpaque(const Bitmap& bitmap) noexcept {
    for (std::int64_t y = 0; y < bitmap.height(); ++y) {
        std::uint8_t all = 255;
        const std::uint8_t* pixel = bitmap.row(y) + 3;
        for (std::int64_t x = 0; x < bitmap.width(); ++x, pixel += 4)
            all &= *pixel;
        if (all != 255)
            return false;
    }
    return true;
}

void dropAlpha(const std::uint8_t* rgba, std::uint8_t* rgb, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, rgba += 4, rgb += 3) {
        rgb[0] = rgba[0];
        rgb[1] = rgba[1];
        rgb[2] = rgba[2];
    }
}

bool append(Data& bytes, const void* written, std::size_t size) noexcept {
    try {
        const auto* first = static_cast<const std::byte*>(written);
        bytes.insert(bytes.end(), first, first + size);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

int percentOf(std::optional<double> quality, int usual) {
    if (!quality || std::isnan(*quality))
        return usual;
    return static_cast<int>(std::lround(std::clamp(*quality, 0.0, 1.0) * 100));
}

} // namespace zorvan::imageio
