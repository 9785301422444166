#pragma once

#include <zorvan/media/AVMediaType.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/text/CMTime.h>

namespace zorvan {

/// One track of a media asset.
struct AVAssetTrack {
    AVMediaType mediaType = AVMediaType::other; ///< What the track holds.
    /// Frames per second; 0 when it is not known, and for what is no video.
    float nominalFrameRate = 0;
    /// In square pixels, before the transform; (0, 0) for what is no video.
    CGSize naturalSize;
    /// How the pictures are to be laid out for showing.
    CGAffineTransform preferredTransform;
    /// The shortest time between two pictures, when the header says that all last equally long;
    /// else invalid.
    CMTime minFrameDuration = kCMTimeInvalid;

    friend bool operator==(const AVAssetTrack&, const AVAssetTrack&) = default;
};

} // namespace zorvan
