#include <zorvan/platform/imageio/ImageWriter.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>
#include <zorvan/platform/imageio/internal/FrameWriter.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <cmath>
#include <exception>

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

} // namespace

bool canEncode(FileFormat format) {
    return format == FileFormat::jpeg || format == FileFormat::png || format == FileFormat::tiff ||
           (format == FileFormat::heic && hasHeicEncoder());
}

std::optional<Data> encode(FileFormat format, std::span<const Frame> frames) {
    const bool isOneTooMany = frames.size() > 1 && format != FileFormat::tiff;
    if (frames.empty() || isOneTooMany || !std::ranges::all_of(frames, &Frame::bitmap))
        return std::nullopt;
    try {
        return dispatched(format, frames);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

bool isOpaque(const Bitmap& bitmap) noexcept {
    const int alpha = bitmap.layout() == BitmapLayout::rgba ? 3 : 0;
    for (std::int64_t y = 0; y < bitmap.height(); ++y) {
        std::uint8_t all = 255;
        const std::uint8_t* pixel = bitmap.row(y) + alpha;
        for (std::int64_t x = 0; x < bitmap.width(); ++x, pixel += 4)
            all &= *pixel;
        if (all != 255)
            return false;
    }
    return true;
}

RgbaRows::RgbaRows(const Bitmap& bitmap) : bitmap_(bitmap) {
    if (bitmap.layout() == BitmapLayout::argb)
        buffer_.resize(static_cast<std::size_t>(bitmap.bytesPerRow()));
}

const std::uint8_t* RgbaRows::operator()(std::int64_t y) noexcept {
    const std::uint8_t* row = bitmap_.row(y);
    if (buffer_.empty())
        return row;
    for (std::size_t i = 0; i < buffer_.size(); i += 4) {
        buffer_[i] = row[i + 1];
        buffer_[i + 1] = row[i + 2];
        buffer_[i + 2] = row[i + 3];
        buffer_[i + 3] = row[i];
    }
    return buffer_.data();
}

void dropAlpha(const std::uint8_t* rgba, std::uint8_t* rgb, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, rgba += 4, rgb += 3) {
        rgb[0] = rgba[0];
        rgb[1] = rgba[1];
        rgb[2] = rgba[2];
    }
}

int percentOf(std::optional<double> quality, int usual) {
    if (!quality || std::isnan(*quality))
        return usual;
    return static_cast<int>(std::lround(std::clamp(*quality, 0.0, 1.0) * 100));
}

} // namespace zorvan::imageio
