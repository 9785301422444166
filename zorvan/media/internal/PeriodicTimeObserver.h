#pragma once

#include <zorvan/media/AVPlayer.h>
#include <zorvan/platform/avfoundation/PlaybackClock.h>

#include <cstdint>
#include <memory>
#include <mutex>

namespace zorvan {

/// Calls a block on a queue as a clock passes the multiples of an interval, and as it jumps.
class PeriodicTimeObserver : public std::enable_shared_from_this<PeriodicTimeObserver> {
public:
    using Clock = avfoundation::PlaybackClock;

    PeriodicTimeObserver(const CMTime& interval, std::shared_ptr<DispatchQueue> queue,
                         AVPlayer::TimeBlock block);

    void clockDidChange(const Clock& clock, bool isJump);
    /// The block is destroyed by the caller, except when it is being called.
    void cancel();

private:
    using Lock = std::unique_lock<std::mutex>;
    using TimePoint = Clock::TimePoint;

    std::int64_t intervalAt(double seconds) const noexcept;
    void setTimer(TimePoint now);
    void timerDidFire(std::uint64_t number);
    void deliver(double seconds);
    void callBlock();

    const double interval_; // in seconds; 0 when there is none
    const std::shared_ptr<DispatchQueue> queue_;

    std::mutex mutex_;
    std::shared_ptr<const AVPlayer::TimeBlock> block_; // null once cancelled
    Clock clock_;
    std::int64_t lastInterval_ = 0;
    std::uint64_t timerNumber_ = 0; // older timers mean nothing
    bool isTimerSet_ = false;
    bool isQueued_ = false;
    double newestSeconds_ = 0;
};

} // namespace zorvan
