#pragma once

#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/platform/graphics/ExactTransforms.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace zorvan {

/// A picture made of shapes, an SVG, which is drawn at any size. Used from one thread at a time.
class VectorPicture {
public:
    /// The most bytes of an SVG that are looked at.
    static constexpr std::size_t maximumByteCount = std::size_t{8} << 20;

    /// Empty when the bytes are no SVG that says how large it is, or too many, or when this machine
    /// has no librsvg, which is loaded when the first SVG is read. Files and addresses that the
    /// bytes name are not opened. Refused as well is what would be drawn deeper than 65,536
    /// elements within one another, references followed, and what hides how deep: compressed bytes,
    /// entities that hold elements, and documents written into an address (`data:`), but for an
    /// image's.
    /// @{
    static std::shared_ptr<const VectorPicture> create(std::span<const std::byte> bytes);
    static std::shared_ptr<const VectorPicture> create(const std::string& path);
    /// @}

    /// Whether this machine has librsvg.
    static bool isSupported();

    /// In pixels, as the picture asks for.
    CGSize size() const noexcept { return size_; }

    /// Fitted into the bitmap, centred, on a transparent ground. Absent when the bitmap cannot be
    /// made or the picture cannot be drawn; with librsvg 2.60 and later also when it takes two
    /// seconds of a processor and two more for every million pixels and bytes.
    /// @{
    std::optional<Bitmap> drawn(std::int64_t width, std::int64_t height) const;
    /// Only the pixels in `part`, of the whole ones that it would have in a bitmap of that size.
    std::optional<Bitmap> drawn(CGSize size, const PixelRect& part) const;
    /// @}

private:
    VectorPicture(std::shared_ptr<void> handle, CGSize size, std::size_t byteCount,
                  std::int64_t reach) noexcept
        : handle_(std::move(handle)), size_(size), byteCount_(byteCount), reach_(reach) {}

    std::shared_ptr<void> handle_;
    CGSize size_;
    std::size_t byteCount_; // of the document
    std::int64_t reach_;    // how deep it is drawn
};

} // namespace zorvan
