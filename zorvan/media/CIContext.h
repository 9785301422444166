#pragma once

#include <zorvan/media/CGImage.h>
#include <zorvan/media/CIImage.h>

#include <memory>

namespace zorvan {

/// Draws recipes: by tiles of some hundred rows, on all processors. May be shared between threads.
class CIContext {
public:
    /// Holds nothing, so that one for each use will do.
    static std::shared_ptr<CIContext> create() { return std::make_shared<CIContext>(); }

    /// All of the picture, its extent widened to whole pixels. Components beyond 0 to 1 are
    /// clamped. Empty without a picture, when nothing is left of it, and when it is too large for a
    /// bitmap or for memory. What a pixel change throws is thrown on.
    CGImage::Pointer createCGImage(const CIImage::Pointer& image) const;
    /// What of the picture lies in the rectangle, transparent beyond its extent.
    CGImage::Pointer createCGImage(const CIImage::Pointer& image, const CGRect& from) const;
};

} // namespace zorvan
