#include <zorvan/media/internal/PeriodicTimeObserver.h>

#include <algorithm>
#include <utility>

namespace zorvan {
namespace {

using std::chrono::steady_clock;

/// However short the interval is, the timer leaves the machine time for something else.
constexpr double shortestDelay = 0.001;
/// A clock that stands a hair before a multiple of the interval has reached it.
constexpr double hair = 1e-6;

double inSeconds(const CMTime& interval) {
    return interval.isNumeric() && interval.seconds() > 0 ? interval.seconds() : 0;
}

} // namespace

PeriodicTimeObserver::PeriodicTimeObserver(const CMTime& interval,
                                           std::shared_ptr<DispatchQueue> queue,
                                           AVPlayer::TimeBlock block)
    : interval_(inSeconds(interval)), queue_(queue ? std::move(queue) : DispatchQueue::main()),
      block_(std::make_shared<const AVPlayer::TimeBlock>(std::move(block))) {}

/// The number of whole intervals before that time.
std::int64_t PeriodicTimeObserver::intervalAt(double seconds) const noexcept {
    if (interval_ == 0)
        return 0;
    return static_cast<std::int64_t>(std::clamp((seconds + hair) / interval_, 0.0, 0x1p62));
}

void PeriodicTimeObserver::clockDidChange(const Clock& clock, bool isJump) {
    const Lock lock(mutex_);
    const bool wasRunning = clock_.rate > 0;
    clock_ = clock;
    if (isJump || !isTimerSet_)
        lastInterval_ = intervalAt(clock.seconds);
    if (isJump)
        deliver(clock.seconds);
    const bool isRunning = clock.rate > 0 && interval_ > 0;
    if (isJump || isRunning != wasRunning || !isTimerSet_) {
        ++timerNumber_;
        isTimerSet_ = false;
        if (isRunning)
            setTimer(steady_clock::now());
    }
}

void PeriodicTimeObserver::setTimer(TimePoint now) {
    const double next = static_cast<double>(lastInterval_ + 1) * interval_;
    const double delay = (next - clock_.secondsAt(now)) / clock_.rate;
    // A movie that has halted is looked after at its pace, but not less often than every second.
    const std::chrono::duration<double> wait(std::clamp(delay, shortestDelay, 1.0));
    isTimerSet_ = true;
    DispatchQueue::global()->asyncAfter(std::chrono::duration_cast<std::chrono::nanoseconds>(wait),
                                        [weak = weak_from_this(), number = timerNumber_] {
                                            if (const auto self = weak.lock())
                                                self->timerDidFire(number);
                                        });
}

void PeriodicTimeObserver::timerDidFire(std::uint64_t number) {
    const Lock lock(mutex_);
    if (!block_ || number != timerNumber_)
        return;
    const TimePoint now = steady_clock::now();
    const double seconds = clock_.secondsAt(now);
    const std::int64_t reached = intervalAt(seconds);
    if (reached > lastInterval_) {
        lastInterval_ = reached;
        deliver(seconds);
    }
    setTimer(now);
}

void PeriodicTimeObserver::deliver(double seconds) {
    newestSeconds_ = seconds;
    if (isQueued_ || !block_)
        return;
    queue_->async([self = shared_from_this()] { self->callBlock(); });
    isQueued_ = true; // the block waits for the lock
}

void PeriodicTimeObserver::callBlock() {
    std::shared_ptr<const AVPlayer::TimeBlock> block;
    double seconds = 0;
    {
        const Lock lock(mutex_);
        isQueued_ = false;
        block = block_;
        seconds = newestSeconds_;
    }
    if (block && *block)
        (*block)(CMTime({.seconds = seconds}));
}

void PeriodicTimeObserver::cancel() {
    std::shared_ptr<const AVPlayer::TimeBlock> block;
    const Lock lock(mutex_);
    block = std::exchange(block_, nullptr);
    ++timerNumber_;
}

} // namespace zorvan
