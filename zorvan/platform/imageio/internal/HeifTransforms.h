#pragma once

#include <zorvan/platform/imageio/internal/HeifBoxes.h>

#include <array>

namespace zorvan::imageio {

/// The turns, mirrors and crops of a HEIF picture, put together in the order of the file: which
/// part of the coded picture remains, and the EXIF value for how that part is turned.
class HeifTransforms {
public:
    explicit HeifTransforms(PixelSize coded) : crop_{0, 0, coded.width, coded.height} {}

    /// Turns by quarters, counter-clockwise.
    void rotate(int quarters) noexcept;
    /// Exchanges left and right, or top and bottom.
    void mirror(bool leftRight) noexcept;
    /// Keeps a rectangle of the picture as it stands after the steps so far.
    void keep(const PixelRect& part) noexcept;

    /// The size after the steps so far.
    PixelSize size() const noexcept;
    const PixelRect& crop() const noexcept { return crop_; }
    int orientation() const noexcept;

private:
    /// Rows of a 2 x 2 matrix; y points down.
    using Matrix = std::array<int, 4>;
    void follow(const Matrix& step) noexcept;

    Matrix matrix_ = {1, 0, 0, 1};
    PixelRect crop_;
};

} // namespace zorvan::imageio
