#pragma once

#include <zorvan/media/AVAssetTrack.h>
#include <zorvan/media/AVMetadataItem.h>
#include <zorvan/media/Location.h>
#include <zorvan/numbers-geometry/Orientation.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/text/CMTime.h>

#include <memory>
#include <optional>
#include <vector>

namespace zorvan {

/// A movie or a sound: what its file says of its tracks and of itself. It never changes, and
/// threads may share it.
class AVAsset {
public:
    /// What an asset is made of that stands for no file.
    struct Parts {
        Required<std::vector<AVAssetTrack>> tracks; ///< None for one that is not readable.
        std::vector<AVMetadataItem> metadata = {};  ///< In the order they are looked through.
        CMTime duration = kCMTimeIndefinite;        ///< Indefinite when it is not known.
    };

    /// Reads the file, and decodes nothing as long as its header says how large the pictures are;
    /// where it does not (MPEG streams, FLV), the first pictures are decoded for that. A file that
    /// cannot be read, is no movie or sound, or is not on this machine gives an asset without
    /// tracks. Never null.
    static std::shared_ptr<const AVAsset> create(const URL& url);
    /// An asset of those parts, which stands for no file.
    static std::shared_ptr<const AVAsset> create(Parts parts);

    /// Absent for one that stands for no file.
    std::optional<URL> url() const { return url_; }
    /// Whether there is any track.
    bool isReadable() const noexcept { return !tracks_.empty(); }

    /// In the order of the file; with a type, those of it alone.
    /// @{
    std::vector<AVAssetTrack> tracks() const { return tracks_; }
    std::vector<AVAssetTrack> tracksWithMediaType(AVMediaType type) const;
    /// @}
    /// In the order of the file, but the date that the container states for itself comes last.
    std::vector<AVMetadataItem> metadata() const { return metadata_; }
    /// Of the longest track; indefinite when it is not known.
    CMTime duration() const noexcept { return duration_; }

    /// The frame rate of the last video track whose rate is not zero; 0 when there is none.
    [[nodiscard]] float computeFrameRate() const noexcept;
    /// The largest width and the largest height of the video tracks, before any transform; (0, 0)
    /// without video.
    [[nodiscard]] CGSize computeNaturalSize() const noexcept;
    /// The transform of the last video track that has another one than the identity; else the
    /// identity.
    [[nodiscard]] CGAffineTransform computeNaturalTransform() const noexcept;
    /// The way the quarter turn of the natural transform points: (a, b, c, d) of (1, 0, 0, 1) is
    /// `up`, (0, 1, -1, 0) `left`, (0, -1, 1, 0) `right`, (-1, 0, 0, -1) `down`. Absent for any
    /// other transform, such as a mirror. The translation does not count.
    [[nodiscard]] std::optional<Orientation> computeNaturalOrientation() const noexcept;

    /// The first date among the metadata that state the creation date, in their order: common,
    /// QuickTime metadata and QuickTime user data.
    [[nodiscard]] std::optional<Date> parseCreationDate() const;
    /// The first place among the metadata that state the location as ISO 6709 text: common, iTunes
    /// and ISO user data, QuickTime metadata and QuickTime user data. What cannot be read is passed
    /// over.
    [[nodiscard]] std::optional<Location> parseLocationFromMetadata() const;

private:
    explicit AVAsset(Parts parts);

    std::optional<URL> url_;
    std::vector<AVAssetTrack> tracks_;
    std::vector<AVMetadataItem> metadata_;
    CMTime duration_;
};

} // namespace zorvan
