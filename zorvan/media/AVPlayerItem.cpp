#include <zorvan/media/AVPlayerItem.h>

#include <zorvan/platform/avfoundation/MediaPlayer.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zorvan {
namespace {

using avfoundation::MediaPlayer;

/// The completion, which may be empty, as the player's thread may have it: it hands the block over
/// to the main queue, so that what the block holds is never let go on that thread.
MediaPlayer::Completion onMainQueue(AVPlayerItem::Completion completion) {
    if (!completion)
        return [](bool) {};
    return [completion = std::move(completion)](bool finished) mutable {
        DispatchQueue::main()->async(
            [completion = std::exchange(completion, nullptr), finished] { completion(finished); });
    };
}

} // namespace

AVPlayerItem::AVPlayerItem(std::shared_ptr<const AVAsset> asset)
    : asset_(std::move(asset)), hasFailed_(!asset_->isReadable() || !asset_->url()) {}

AVPlayerItem::~AVPlayerItem() = default;

std::shared_ptr<AVPlayerItem> AVPlayerItem::create(const URL& url) {
    return create(AVAsset::create(url));
}

std::shared_ptr<AVPlayerItem> AVPlayerItem::create(std::shared_ptr<const AVAsset> asset) {
    return std::shared_ptr<AVPlayerItem>(new AVPlayerItem(std::move(asset)));
}

void AVPlayerItem::leavePlayer() {
    hasFailed_ = status() == Status::failed;
    player_.reset();
    isInPlayer_ = false;
}

AVPlayerItem::Status AVPlayerItem::status() const {
    if (hasFailed_)
        return Status::failed;
    if (!player_)
        return Status::unknown;
    const MediaPlayer::Status status = player_->status();
    return status == MediaPlayer::Status::ready    ? Status::readyToPlay
           : status == MediaPlayer::Status::failed ? Status::failed
                                                   : Status::unknown;
}

CMTime AVPlayerItem::currentTime() const {
    if (!player_)
        return kCMTimeZero;
    const CMTime time({.seconds = player_->clock().secondsAt(std::chrono::steady_clock::now())});
    return duration().isNumeric() ? CMTimeMinimum(time, duration()) : time;
}

void AVPlayerItem::seek(const Seek& target, Completion completion) {
    const double seconds = target.to.value.seconds();
    auto done = onMainQueue(std::move(completion));
    if (!player_ || std::isnan(seconds))
        return done(false);
    const bool mayLandAnywhere =
        target.toleranceBefore.isPositiveInfinity() && target.toleranceAfter.isPositiveInfinity();
    const double last = duration().isNumeric() ? duration().seconds() : seconds;
    player_->seek(std::min(seconds, last),
                  mayLandAnywhere ? MediaPlayer::Precision::quick : MediaPlayer::Precision::exact,
                  std::move(done));
}

void AVPlayerItem::step(ByCount count, Completion completion) {
    auto done = onMainQueue(std::move(completion));
    player_ ? player_->step(count.byCount, std::move(done)) : done(false);
}

std::optional<Bitmap> AVPlayerItem::currentPicture() const {
    return player_ ? player_->picture() : std::nullopt;
}

} // namespace zorvan
