#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGSize.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zorvan::avfoundation {

/// What a stream holds.
enum class MediaKind { video, audio, text, other };

/// `value / timescale` seconds.
struct MediaTime {
    std::int64_t value;     ///< In units of `1 / timescale` seconds.
    std::int32_t timescale; ///< Units in a second; above 0.
};

/// One stream of pictures, sound or anything else.
struct MediaTrack {
    MediaKind kind = MediaKind::other; ///< What it holds.
    /// Frames per second on the average; 0 when it is not known, and for what is no video.
    double frameRate = 0;
    /// How long every picture lasts, when the header says that all last equally long.
    std::optional<MediaTime> frameDuration;
    /// In square pixels, before the transform; (0, 0) for what is no video.
    CGSize naturalSize;
    /// How the pictures are to be laid out for showing.
    CGAffineTransform preferredTransform;
};

/// What a file says of itself: "mdta/com.apple.quicktime.creationdate" and the like, and bytes that
/// are most often UTF-8.
struct MediaMetadata {
    std::string identifier; ///< The place in the file and the name there.
    std::string value;      ///< As it stands there.
};

/// What a movie or sound file says of itself.
struct MediaDescription {
    /// In the order of the file. Pictures of a cover are no tracks.
    std::vector<MediaTrack> tracks;
    std::vector<MediaMetadata> metadata; ///< In the order of the file.
    /// Absent when the file does not say.
    std::optional<MediaTime> duration;
};

/// How far a file is read.
struct MediaReadingOptions {
    /// Some containers (MPEG streams, FLV) leave sizes to the encoded pictures. Whether the first
    /// of these may be decoded then; without it such sizes are (0, 0).
    bool mayDecode = false;
};

/// Describes a movie or a sound file from its header, and from its first packets where the header
/// does not say enough. Absent when it is no regular file, or none of a known container: what it
/// is, its bytes decide. Opens no other file than this one, whatever this one asks for.
std::optional<MediaDescription> describeMedia(const std::string& path,
                                              const MediaReadingOptions& options = {});

} // namespace zorvan::avfoundation
