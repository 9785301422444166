#pragma once

#include <cstdint>

namespace zorvan {

/// What the options of `CGImageSource::thumbnail` say.
struct ThumbnailRequest {
    /// The longest side allowed; below 1 there is no thumbnail.
    std::int64_t longestSide;
    bool isUpright = false;
    bool isMadeAlways = false;
    bool isMadeIfAbsent = false;
};

/// A limit as callers state it: rounded down, but at least 1; 0 when it is not above 0.
std::int64_t longestSide(double limit) noexcept;

} // namespace zorvan
