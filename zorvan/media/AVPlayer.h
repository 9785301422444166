#pragma once

#include <zorvan/media/AVPlayerItem.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/text/CMTime.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace zorvan {

/// One registration with a player: what `addTimeObserver` returns and `removeTimeObserver` takes.
/// The player keeps it alive until it is removed.
class PeriodicTimeObserver;

/// Plays an item. It opens no window: an application shows `currentItem()->currentPicture()` where
/// it likes. Sound goes to the system's default output.
///
/// Players do not disturb each other. One that goes away while it plays stops playing first.
class AVPlayer {
public:
    /// Is called with the current time.
    using TimeBlock = std::function<void(const CMTime& time)>;
    using Completion = AVPlayerItem::Completion; ///< As of a seek.

    /// How often to call, and where.
    struct Interval {
        /// From one call to the next, in time of the movie.
        Required<CMTime> interval;
        /// Null: the main queue.
        std::shared_ptr<DispatchQueue> queue = {};
    };
    /// How often to call: times a second.
    struct FPS {
        Required<std::int64_t> fps;
    };
    /// How many pictures on; back when it is negative.
    struct ByCount {
        Required<std::int64_t> byCount;
    };

    /// A player that is paused: without an item, with a new one for the URL, or with that one,
    /// which must not be in another player.
    /// @{
    static std::shared_ptr<AVPlayer> create();
    static std::shared_ptr<AVPlayer> create(const URL& url);
    static std::shared_ptr<AVPlayer> create(std::shared_ptr<AVPlayerItem> item);
    /// @}

    /// Stops playing first, and lets go of the item.
    ~AVPlayer();
    AVPlayer(const AVPlayer&) = delete;
    AVPlayer& operator=(const AVPlayer&) = delete;

    /// Null when there is none.
    std::shared_ptr<AVPlayerItem> currentItem() const noexcept { return item_; }
    /// Lets go of the item there was. The rate stays, so that a playing player plays the new one.
    /// Stops the program with "AVPlayerItem is already in a player" for an item of another player.
    void replaceCurrentItem(std::shared_ptr<AVPlayerItem> item);

    /// The speed that was asked for: 1 is normal, 0 paused. 0 again once the end has been reached,
    /// and 0 for an item that has failed.
    float rate() const;
    /// Above 0 it plays, as far as the file is ready, at 0.01 to 100 times the normal speed. 0
    /// pauses, and so do rates that cannot be played: those below zero become 0; NaN stays.
    void setRate(float rate);
    /// `setRate(1)`; at the end of the item it stays there.
    void play() { setRate(1); }
    /// `setRate(0)`.
    void pause() { setRate(0); }
    /// Whether the rate is not 0; NaN counts as not 0.
    bool isPlaying() const { return rate() != 0; }
    /// Pauses when the rate is not 0, else plays.
    void playPause() { isPlaying() ? pause() : play(); }

    /// The current item's duration; absent without one.
    std::optional<CMTime> duration() const;
    /// The current item's time; zero without one.
    CMTime currentTime() const;

    /// As `AVPlayerItem::seek`. Without an item nothing happens, and the completion gets false.
    void seek(const AVPlayerItem::Seek& target, Completion completion = {});
    /// Seeks with both tolerances zero: to the picture that is on show at the time.
    void seekAccurately(const CMTime& time, Completion completion = {});
    /// Seeks with both tolerances infinite: near the time, but quickly.
    void seekInaccurately(const CMTime& time, Completion completion = {});
    /// As `AVPlayerItem::step`.
    void step(ByCount count, Completion completion = {});
    /// One picture on, or back.
    /// @{
    void seekNextFrame() { step({.byCount = 1}); }
    void seekPreviousFrame() { step({.byCount = -1}); }
    /// @}

    /// Calls the block on the queue with the current time: while it plays, whenever the time of the
    /// movie passes a multiple of the interval; and whenever it jumps, starts, stops or changes its
    /// rate. An interval that is not above zero leaves the latter. A queue that lags behind is not
    /// piled upon: the block then gets the newest time.
    std::shared_ptr<PeriodicTimeObserver> addPeriodicTimeObserver(const Interval& interval,
                                                                  TimeBlock block);
    /// The same, every 1/25 s on the main queue.
    std::shared_ptr<PeriodicTimeObserver> addTimeObserver(TimeBlock block);
    /// The same, every 1/fps s on the main queue. Stops the program with a message, which names the
    /// rate, when `fps` does not fit 32 bits.
    std::shared_ptr<PeriodicTimeObserver> addTimeObserver(FPS rate, TimeBlock block);
    /// Ends the registration; no effect when it has ended already. The block is not begun again on
    /// this thread, nor by its queue once a call under way has ended.
    void removeTimeObserver(const std::shared_ptr<PeriodicTimeObserver>& observer);

private:
    class Observers;
    AVPlayer();

    const std::shared_ptr<Observers> observers_;
    std::shared_ptr<AVPlayerItem> item_;
    float rate_ = 0; // asked for while no item can play it
};

} // namespace zorvan
