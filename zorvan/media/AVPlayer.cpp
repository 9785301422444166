#include <zorvan/media/AVPlayer.h>

#include <zorvan/media/internal/PeriodicTimeObserver.h>
#include <zorvan/platform/avfoundation/MediaPlayer.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace zorvan {

using avfoundation::MediaPlayer;
using avfoundation::PlaybackClock;

namespace {

/// In seconds; 0 when it is not known, also of which track.
double frameDuration(const AVAsset& asset) {
    const auto tracks = asset.tracksWithMediaType(AVMediaType::video);
    const bool isKnown = tracks.size() == 1 && tracks.front().minFrameDuration.isNumeric();
    return isKnown ? tracks.front().minFrameDuration.seconds() : 0;
}

/// Null when there is no thread or no memory for it.
std::unique_ptr<MediaPlayer> playerOf(const AVAsset& asset,
                                      std::weak_ptr<MediaPlayer::Listener> listener) {
    try {
        return std::make_unique<MediaPlayer>(asset.url()->path(), frameDuration(asset),
                                             std::move(listener));
    } catch (const std::exception&) {
        return nullptr;
    }
}

void tellThatNothingHappened(AVPlayer::Completion completion) {
    if (completion)
        DispatchQueue::main()->async([completion = std::move(completion)] { completion(false); });
}

} // namespace

/// Passes what the player's thread tells to the observers. Outlives the items.
class AVPlayer::Observers : public MediaPlayer::Listener {
public:
    void statusDidChange(MediaPlayer::Status) override {}

    void clockDidChange(const PlaybackClock& clock, bool isJump) override {
        const std::scoped_lock lock(mutex_);
        clock_ = clock;
        for (const auto& observer : observers_)
            observer->clockDidChange(clock, isJump);
    }

    void reset() { clockDidChange({.at = std::chrono::steady_clock::now()}, true); }

    void add(std::shared_ptr<PeriodicTimeObserver> observer) {
        const std::scoped_lock lock(mutex_);
        observer->clockDidChange(clock_, false);
        observers_.push_back(std::move(observer));
    }

    void remove(const std::shared_ptr<PeriodicTimeObserver>& observer) {
        const std::scoped_lock lock(mutex_);
        std::erase(observers_, observer);
    }

    std::vector<std::shared_ptr<PeriodicTimeObserver>> removeAll() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(observers_, {});
    }

private:
    std::mutex mutex_;
    std::vector<std::shared_ptr<PeriodicTimeObserver>> observers_;
    PlaybackClock clock_{.at = std::chrono::steady_clock::now()};
};

AVPlayer::AVPlayer() : observers_(std::make_shared<Observers>()) {}

AVPlayer::~AVPlayer() {
    for (const auto& observer : observers_->removeAll())
        observer->cancel();
    if (item_)
        item_->leavePlayer();
}

std::shared_ptr<AVPlayer> AVPlayer::create() { return std::shared_ptr<AVPlayer>(new AVPlayer); }

std::shared_ptr<AVPlayer> AVPlayer::create(const URL& url) {
    return create(AVPlayerItem::create(url));
}

std::shared_ptr<AVPlayer> AVPlayer::create(std::shared_ptr<AVPlayerItem> item) {
    auto player = create();
    player->replaceCurrentItem(std::move(item));
    return player;
}

void AVPlayer::replaceCurrentItem(std::shared_ptr<AVPlayerItem> item) {
    if (item == item_)
        return;
    if (item && item->isInPlayer_)
        fatalError("AVPlayerItem is already in a player");
    const float rate = this->rate();
    if (item_)
        item_->leavePlayer();
    observers_->reset();
    item_ = std::move(item);
    if (item_) {
        item_->isInPlayer_ = true;
        if (!item_->hasFailed_)
            item_->player_ = playerOf(*item_->asset_, observers_);
        item_->hasFailed_ = !item_->player_;
    }
    setRate(rate);
}

float AVPlayer::rate() const {
    if (!item_)
        return rate_;
    if (!item_->player_ || item_->status() == AVPlayerItem::Status::failed)
        return 0;
    return std::isnan(rate_) ? rate_ : static_cast<float>(item_->player_->rate());
}

void AVPlayer::setRate(float rate) {
    rate_ = rate <= 0 ? 0 : std::isnan(rate) ? rate : std::clamp(rate, 0.01f, 100.0f);
    if (item_ && item_->player_)
        item_->player_->setRate(std::isnan(rate_) ? 0 : rate_);
}

std::optional<CMTime> AVPlayer::duration() const {
    return item_ ? std::optional(item_->duration()) : std::nullopt;
}

CMTime AVPlayer::currentTime() const { return item_ ? item_->currentTime() : kCMTimeZero; }

void AVPlayer::seek(const AVPlayerItem::Seek& target, Completion completion) {
    item_ ? item_->seek(target, std::move(completion))
          : tellThatNothingHappened(std::move(completion));
}

void AVPlayer::seekAccurately(const CMTime& time, Completion completion) {
    seek({.to = time, .toleranceBefore = kCMTimeZero, .toleranceAfter = kCMTimeZero},
         std::move(completion));
}

void AVPlayer::seekInaccurately(const CMTime& time, Completion completion) {
    seek({.to = time}, std::move(completion));
}

void AVPlayer::step(ByCount count, Completion completion) {
    item_ ? item_->step({.byCount = count.byCount}, std::move(completion))
          : tellThatNothingHappened(std::move(completion));
}

std::shared_ptr<PeriodicTimeObserver> AVPlayer::addPeriodicTimeObserver(const Interval& interval,
                                                                        TimeBlock block) {
    auto observer =
        std::make_shared<PeriodicTimeObserver>(interval.interval, interval.queue, std::move(block));
    observers_->add(observer);
    return observer;
}

std::shared_ptr<PeriodicTimeObserver> AVPlayer::addTimeObserver(TimeBlock block) {
    return addPeriodicTimeObserver({.interval = CMTimeMake(1, 25)}, std::move(block));
}

std::shared_ptr<PeriodicTimeObserver> AVPlayer::addTimeObserver(FPS rate, TimeBlock block) {
    const std::int64_t fps = rate.fps;
    const auto timescale = static_cast<std::int32_t>(fps);
    if (timescale != fps)
        fatalError("Frame rate " + std::to_string(fps) +
                   " does not fit a time scale, which is at most 2147483647");
    return addPeriodicTimeObserver({.interval = CMTimeMake(1, timescale)}, std::move(block));
}

void AVPlayer::removeTimeObserver(const std::shared_ptr<PeriodicTimeObserver>& observer) {
    if (!observer)
        return;
    observers_->remove(observer);
    observer->cancel();
}

} // namespace zorvan
