#pragma once

#include <zorvan/media/AVAsset.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/text/CMTime.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace zorvan {

namespace avfoundation {
class MediaPlayer;
}

/// A movie or sound to be played, and where playing it stands. Becomes active as the current item
/// of a player, of one at a time.
///
/// While it is in no player its time is zero, and seeks and steps do nothing.
class AVPlayerItem {
public:
    /// Whether the item can be played.
    enum class Status {
        /// It is in no player, or its file is being opened.
        unknown,
        readyToPlay, ///< It can be played.
        /// The file cannot be played. It stays so.
        failed
    };

    /// How many pictures on; back when it is negative.
    struct ByCount {
        Required<std::int64_t> byCount;
    };
    /// Where to go, and how near.
    struct Seek {
        Required<CMTime> to; ///< The time.
        /// Infinite: what is quick to reach. Anything else: the very picture.
        /// @{
        CMTime toleranceBefore = kCMTimePositiveInfinity;
        CMTime toleranceAfter = kCMTimePositiveInfinity;
        /// @}
    };
    /// Called once on the main queue; false when another seek took the place of this one, or when
    /// it could not be done.
    using Completion = std::function<void(bool finished)>;

    /// In no player yet; reads what the asset says of itself, and no more. The asset must not be
    /// null.
    /// @{
    static std::shared_ptr<AVPlayerItem> create(const URL& url);
    static std::shared_ptr<AVPlayerItem> create(std::shared_ptr<const AVAsset> asset);
    /// @}

    /// Leaves its player first.
    ~AVPlayerItem();
    AVPlayerItem(const AVPlayerItem&) = delete;
    AVPlayerItem& operator=(const AVPlayerItem&) = delete;

    /// Never null.
    std::shared_ptr<const AVAsset> asset() const noexcept { return asset_; }
    /// As the asset has it: indefinite when it is not known.
    CMTime duration() const noexcept { return asset_->duration(); }
    /// As it is now, also while the player is at work.
    Status status() const;
    /// Of the picture on show, or the time between pictures while playing; the time asked for while
    /// a seek is under way.
    CMTime currentTime() const;

    /// Begins to seek, and returns at once. With both tolerances infinite it lands on the nearest
    /// place that is quick to reach, most often the key picture before the time; with any others on
    /// the very picture that is on show at the time. Times before the start and behind the end lead
    /// there. A time that is no number is not sought.
    void seek(const Seek& target, Completion completion = {});
    /// Begins to move on by that many pictures, or back when the count is negative, as far as there
    /// are any, and returns at once. Playing goes on from there.
    void step(ByCount count, Completion completion = {});

    /// What is on show, upright; absent before the item is ready and without video.
    std::optional<Bitmap> currentPicture() const;

private:
    friend class AVPlayer;

    explicit AVPlayerItem(std::shared_ptr<const AVAsset> asset);
    void leavePlayer();

    const std::shared_ptr<const AVAsset> asset_;
    bool isInPlayer_ = false;
    std::unique_ptr<avfoundation::MediaPlayer> player_; // null while in no player, and when failed
    bool hasFailed_;
};

} // namespace zorvan
