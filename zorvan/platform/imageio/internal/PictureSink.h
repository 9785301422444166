#pragma once

#include <zorvan/platform/graphics/AreaDownscaler.h>
#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/imageio/ImageReader.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan::imageio {

struct PixelSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// Throws when a picture of this size is refused: before anything is allocated for it.
void checkSize(PixelSize size);
/// What so many bytes of a file have something to say of, as pictures are mostly coded.
constexpr std::int64_t usualPixels(std::uint64_t byteCount) noexcept {
    return static_cast<std::int64_t>(byteCount * 4096);
}

/// Whether that many pixels, of a file that has something to say of `mostPixels`, would cost memory
/// for next to no bytes. Pictures of up to 2^26 pixels never do: they may be of one colour.
bool isOutOfProportion(PixelSize size, std::int64_t mostPixels) noexcept;
/// Throws then, and as `checkSize` does.
void checkProportion(PixelSize size, std::int64_t mostPixels);

/// A transparent bitmap of that size. Throws when there is no memory for it.
Bitmap bitmapOf(PixelSize size);

/// The size that a stored picture comes out at.
PixelSize wantedSize(PixelSize stored, const DecodeOptions& options) noexcept;

/// Takes the rows of a picture from a codec, the top one first, and makes the bitmap that was asked
/// for: row by row, so that a picture that is to be small is never whole in memory. The bitmap is
/// made for the first row.
class PictureSink {
public:
    /// `source` is the size of what the codec gives; no side of `target` is longer.
    PictureSink(PixelSize source, PixelSize target) noexcept : source_(source), target_(target) {}
    PictureSink(PictureSink&&) = delete;

    /// Where the codec puts the next row: room for the source's width in RGBA, premultiplied.
    /// Throws when there is no memory for the bitmap.
    std::uint8_t* row();
    /// The row is there.
    void commit() noexcept;
    /// All rows, of a picture of the source's size.
    void put(const Bitmap& picture);
    /// All rows, of a canvas of the source's size on which a picture stands somewhere and which is
    /// transparent elsewhere. `nextRow(out, count)` gives the first pixels of the picture's rows.
    template <class NextRow>
    void putOnCanvas(PixelSize canvas, const PixelRect& picture, NextRow nextRow) {
        const std::int64_t left = std::min(picture.x, canvas.width);
        const std::int64_t width = std::min(picture.width, canvas.width - left);
        for (std::int64_t y = 0; y < canvas.height; ++y) {
            std::fill_n(row(), canvas.width * 4, std::uint8_t{0});
            if (y >= picture.y && y < picture.y + picture.height)
                nextRow(row() + left * 4, width);
            commit();
        }
    }
    /// After the last row.
    Bitmap take() { return std::move(*bitmap_); }

private:
    void begin();

    const PixelSize source_, target_;
    std::optional<Bitmap> bitmap_;
    std::optional<AreaDownscaler> scaler_;
    std::vector<std::uint8_t> buffer_;
    std::int64_t next_ = 0;
};

} // namespace zorvan::imageio
