#pragma once

#include <zorvan/media/AVAsset.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/text/CMTime.h>

#include <memory>

namespace zorvan {

/// Takes pictures out of a movie, without a player.
struct AVAssetImageGenerator {
    /// A picture and when it begins.
    struct Image {
        /// Empty when the asset stands for no file, has no video, or cannot be decoded there.
        CGImage::Pointer image;
        /// When the picture begins; invalid without a picture.
        CMTime actualTime;
    };

    Required<std::shared_ptr<const AVAsset>> asset; ///< Must not be null.
    /// Turns and mirrors the picture as its track asks for.
    bool appliesPreferredTrackTransform = false;
    /// The picture is reduced to fit in, and never enlarged; a side of 0 does not limit.
    CGSize maximumSize = {};
    /// With both infinite, the key picture at or before the time is given, which is all that is
    /// decoded; else the one on show at the time, for which those since the key picture are.
    /// @{
    CMTime requestedTimeToleranceBefore = kCMTimePositiveInfinity;
    CMTime requestedTimeToleranceAfter = kCMTimePositiveInfinity;
    /// @}

    /// The picture of the first video track at a time, opaque and in square pixels. Times that the
    /// movie does not have lead to its ends. Opens the file anew; it may be called from several
    /// threads at once.
    Image copyCGImage(const CMTime& at) const;
};

} // namespace zorvan
