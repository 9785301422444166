#pragma once

#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/HeifMeta.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan::imageio {

/// A picture of a HEIF file as it is coded: as one, or in rows of tiles of one size, of which the
/// last may reach beyond the picture.
class HeifTiles {
public:
    /// Throws Failure when the picture is made up in another way, or its tiles do not cover it.
    /// Both must outlive it.
    HeifTiles(const HeifMeta& meta, ByteSource& source, std::uint32_t item);

    /// The size of the picture, before any turn and crop.
    PixelSize size() const { return colour_.size; }
    PixelSize tileSize() const { return colour_.tileSize; }

    bool isOne() const { return colour_.tiles.size() == 1; }

    /// A file whose only picture is that tile, with its alpha. Throws Failure.
    Data file(std::int64_t column, std::int64_t row) const;

private:
    struct Layout {
        std::uint32_t item = 0;
        PixelSize size = {};
        PixelSize tileSize = {};
        std::int64_t columns = 1;
        std::vector<std::uint32_t> tiles = {};
        /// Whether tiles of the one lie where tiles of the other do.
        bool fits(const Layout& other) const;
    };

    Layout layoutOf(std::uint32_t item) const;
    Layout gridOf(std::uint32_t id, const HeifItem& grid,
                  const std::vector<std::uint32_t>& tiles) const;
    void checkBytes(const std::vector<std::uint32_t>& tiles) const;
    PixelSize sizeOf(std::uint32_t item) const;
    const HeifItem& coded(std::uint32_t item) const;
    Data bytesOf(const HeifItem& item) const;

    const HeifMeta& meta_;
    ByteSource& source_;
    Layout colour_;
    std::optional<Layout> alpha_ = {};
    bool isPremultiplied_ = false;
};

} // namespace zorvan::imageio
