#pragma once

#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <optional>
#include <string>

namespace zorvan::avfoundation {

/// Which picture of a movie is wanted, and how large.
struct FrameRequest {
    /// As players count. Times before the start of the movie, those behind its end, and NaN lead to
    /// its ends.
    double seconds = 0;
    /// The picture that is on show at that time; else the key picture at or before it, which is all
    /// that is decoded, but in an AVI.
    bool isExact = false;
    /// Whether the picture is turned and mirrored as the track asks for.
    bool isUpright = true;
    /// The picture is reduced to fit in, when it is larger; a side of 0 does not limit.
    CGSize maximumSize = {};
};

/// A picture of a movie.
struct GrabbedFrame {
    /// In square pixels, opaque.
    Bitmap bitmap;
    /// When it begins, as players count; before 0 where the movie begins in the midst of it.
    double seconds;
};

/// Decodes one picture of the first video track that is no cover. Absent when there is none, or it
/// cannot be decoded. Opens no other file than this one. Brighter pictures than a screen shows are
/// not mapped to it.
std::optional<GrabbedFrame> grabFrame(const std::string& path, const FrameRequest& request);

} // namespace zorvan::avfoundation
