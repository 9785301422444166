#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zorvan {

/// What the two orientation enumerations share: their position among the eight tags, and what comes
/// of mirroring or turning the picture once more.
template <class Orientation>
class OrientationComposition {
public:
    /// Mirrored left to right as well.
    [[nodiscard]] constexpr Orientation horizontalMirrored() const noexcept {
        return composed({1, 0, 3, 2, 5, 4, 7, 6});
    }
    /// Mirrored top to bottom as well.
    [[nodiscard]] constexpr Orientation verticalMirrored() const noexcept {
        return composed({3, 2, 1, 0, 7, 6, 5, 4});
    }
    /// Turned a quarter to the left as well.
    [[nodiscard]] constexpr Orientation leftRotated() const noexcept {
        return composed({7, 4, 5, 6, 3, 0, 1, 2});
    }
    /// Turned a quarter to the right as well.
    [[nodiscard]] constexpr Orientation rightRotated() const noexcept {
        return composed({5, 6, 7, 4, 1, 2, 3, 0});
    }

    /// Changes the orientation into what the form that ends in -ed gives.
    /// @{
    constexpr void horizontalFlip() noexcept { position_ = horizontalMirrored().position_; }
    constexpr void verticalFlip() noexcept { position_ = verticalMirrored().position_; }
    constexpr void leftRotate() noexcept { position_ = leftRotated().position_; }
    constexpr void rightRotate() noexcept { position_ = rightRotated().position_; }
    /// @}

    /// Of the same case.
    friend constexpr bool operator==(const OrientationComposition&,
                                     const OrientationComposition&) = default;

protected:
    /// Of a position from 0 to 7.
    constexpr explicit OrientationComposition(std::uint8_t position) noexcept
        : position_(position) {}

    /// From 0 to 7.
    constexpr std::uint8_t position() const noexcept { return position_; }

private:
    constexpr Orientation composed(const std::array<std::uint8_t, 8>& positions) const noexcept {
        return static_cast<typename Orientation::Case>(positions[std::size_t{position_}]);
    }

    std::uint8_t position_;
};

} // namespace zorvan
