#include <zorvan/platform/avfoundation/internal/OperationRunner.h>

#include <algorithm>
#include <utility>

namespace zorvan::avfoundation {
namespace {

using namespace std::chrono_literals;

/// Decoding up to a far picture takes its time; without an end a player could hang for good.
constexpr auto longestLanding = 30'000ms;
/// In a sound there is no picture to come.
constexpr auto longestStep = 1'000ms;
/// How long a frame may lag behind the event of its seek.
constexpr auto frameLag = 60ms, longestFrameLag = 500ms;
/// Times closer than this are the same, written in other units.
constexpr double sameTime = 1e-5;

} // namespace

void OperationRunner::start(Operation operation, TimePoint now) {
    operation_ = std::move(operation);
    isCorrecting_ = false;
    if (operation_.kind == Operation::Kind::open) {
        awaitLanding(now);
        sawSeek_ = true; // opening restarts without a seek
        return;
    }
    core_.setFlag("pause", true);
    if (operation_.kind != Operation::Kind::step)
        return seek(now);
    const auto steps = static_cast<std::uint64_t>(operation_.steps);
    remainingSteps_ = operation_.steps < 0 ? 0 - steps : steps;
    isFirstTime_ = true;
    askTime(now);
}

void OperationRunner::seek(TimePoint now) {
    const bool isExact = operation_.kind == Operation::Kind::exactSeek;
    awaitLanding(now);
    core_.seek(++id_, isExact ? exactTarget() : operation_.seconds,
               isExact ? "absolute+exact" : "absolute+keyframes");
}

/// libmpv lands on the first picture that begins at most 5 ms before the target, or after it. So
/// the one that is on show at a time is met at once when the target is that much less than a
/// picture before the time; in the last moments of a picture it is the next one all the same.
double OperationRunner::exactTarget() const noexcept {
    constexpr double slack = 0.005;
    const double moment = frameDuration_ / 50;
    if (frameDuration_ < 2 * slack)
        return operation_.seconds;
    return std::max(operation_.seconds - frameDuration_ + slack + moment, 0.0);
}

/// A container without an index may lead behind the time sought, whence there is no way back.
void OperationRunner::seekFromEarlier(TimePoint now) {
    setDemuxerOffset(std::max(2 * demuxerOffset_, 20.0));
    isCorrecting_ = false;
    seek(now);
}

void OperationRunner::setDemuxerOffset(double seconds) {
    demuxerOffset_ = seconds;
    core_.setNumber("hr-seek-demuxer-offset", seconds);
}

void OperationRunner::stepBack(TimePoint now) {
    awaitLanding(now);
    core_.command(++id_, {"frame-back-step"});
}

void OperationRunner::stepOn(TimePoint now) {
    reportedTime_.reset();
    framesBeforeCommand_ = frameCount_;
    wait(Phase::stepping, longestStep, now);
    core_.command(++id_, {"frame-step"});
}

void OperationRunner::stepOnOrBack(TimePoint now) {
    const bool isForward = operation_.steps > 0;
    if (remainingSteps_ == 0 || (isForward && isAtEnd_))
        return finish(true);
    --remainingSteps_;
    isForward ? stepOn(now) : stepBack(now);
}

void OperationRunner::askTime(TimePoint now) {
    wait(Phase::asking, longestLanding, now);
    core_.ask(++id_, "time-pos");
}

void OperationRunner::awaitLanding(TimePoint now) noexcept {
    sawSeek_ = false;
    restarted_.reset();
    framesBeforeCommand_ = framesBeforeSeek_ = frameCount_;
    wait(Phase::landing, longestLanding, now);
}

void OperationRunner::wait(Phase phase, std::chrono::milliseconds atMost, TimePoint now) noexcept {
    phase_ = phase;
    deadline_ = now + atMost;
}

void OperationRunner::commandDidFail(std::uint64_t id) {
    if (isRunning() && id == id_)
        finish(false);
}

void OperationRunner::didSeek() noexcept {
    sawSeek_ = true;
    restarted_.reset();
    framesBeforeSeek_ = frameCount_;
}

void OperationRunner::didRestart(TimePoint now) noexcept {
    if (sawSeek_)
        restarted_ = now;
}

/// The picture of a seek comes about the time that its event does, most often after it. A frame
/// that came with the command but before the event may be the one, or the last of the old place.
bool OperationRunner::hasLanded(bool hasVideo, TimePoint now) const noexcept {
    if (!restarted_)
        return false;
    if (!hasVideo || frameCount_ > framesBeforeSeek_)
        return true;
    return now > *restarted_ + (frameCount_ > framesBeforeCommand_ ? frameLag : longestFrameLag);
}

void OperationRunner::didAnswer(std::uint64_t id, std::optional<double> seconds, TimePoint now) {
    if (phase_ != Phase::asking || id != id_)
        return;
    const double before = position_;
    position_ = seconds.value_or(operation_.seconds);
    if (operation_.kind == Operation::Kind::step) {
        const bool hasMoved = isFirstTime_ || position_ < before;
        isFirstTime_ = false;
        return hasMoved ? stepOnOrBack(now) : finish(true);
    }
    // Sound begins at the time itself; what is told is where an output with a delay would be.
    if (operation_.kind == Operation::Kind::exactSeek && !hasVideo_)
        position_ = operation_.seconds;
    // Of a picture that begins after the time, the one before it is on show then.
    const bool isLate = operation_.kind == Operation::Kind::exactSeek && hasVideo_ &&
                        position_ > operation_.seconds + sameTime;
    if (isLate && !isCorrecting_) {
        isCorrecting_ = true;
        return stepBack(now);
    }
    if (isLate && demuxerOffset_ <= operation_.seconds)
        return seekFromEarlier(now);
    finish(true);
}

std::optional<OperationRunner::Outcome> OperationRunner::advance(bool hasVideo, TimePoint now) {
    hasVideo_ = hasVideo;
    if (phase_ == Phase::landing && hasLanded(hasVideo, now)) {
        askTime(now);
    } else if (phase_ == Phase::stepping && reportedTime_ && *reportedTime_ > position_ &&
               frameCount_ > framesBeforeCommand_) {
        position_ = *reportedTime_;
        stepOnOrBack(now);
    } else if (phase_ == Phase::stepping && (isAtEnd_ || now > deadline_)) {
        position_ = reportedTime_.value_or(position_);
        finish(true);
    } else if (isRunning() && now > deadline_) {
        finish(false);
    }
    return std::exchange(outcome_, std::nullopt);
}

void OperationRunner::finish(bool finished) {
    if (!isRunning())
        return;
    phase_ = Phase::idle;
    outcome_ = Outcome{std::move(operation_), finished, position_};
}

} // namespace zorvan::avfoundation
