#pragma once

#include <zorvan/platform/avfoundation/internal/MpvCore.h>
#include <zorvan/platform/avfoundation/internal/mpvPlayback.h>

#include <chrono>
#include <cstdint>
#include <optional>

namespace zorvan::avfoundation {

/// Does one seek or step at a time: sends the commands for it, and from the events it is told of
/// finds out where and when it has landed.
class OperationRunner {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Outcome {
        Operation operation;
        bool finished;
        /// Of the picture that is on show now.
        double seconds;
    };

    /// `frameDuration` as `MediaPlayer` has it.
    OperationRunner(MpvCore& core, double frameDuration)
        : core_(core), frameDuration_(frameDuration) {}

    bool isRunning() const noexcept { return phase_ != Phase::idle; }
    /// The core stands still afterwards.
    void start(Operation operation, TimePoint now);
    /// Leaves out the steps not yet begun.
    void cutShort() noexcept { remainingSteps_ = 0; }
    void abort() { finish(false); }

    /// How much earlier than a picture the file is to be read to find it.
    void setDemuxerOffset(double seconds);

    void commandDidFail(std::uint64_t id);
    void didSeek() noexcept;
    void didRestart(TimePoint now) noexcept;
    void didTakeFrame() noexcept { ++frameCount_; }
    void didChangeTime(double seconds) noexcept { reportedTime_ = seconds; }
    void didReachEnd(bool isAtEnd) noexcept { isAtEnd_ = isAtEnd; }
    void didAnswer(std::uint64_t id, std::optional<double> seconds, TimePoint now);

    /// Looks whether what is waited for has come. What ended since the last call.
    std::optional<Outcome> advance(bool hasVideo, TimePoint now);

private:
    enum class Phase {
        idle,
        landing,  // a seek was asked for: its picture is waited for
        asking,   // the time of the picture was asked for
        stepping, // one picture on was asked for
    };

    void seek(TimePoint now);
    void seekFromEarlier(TimePoint now);
    double exactTarget() const noexcept;
    void askTime(TimePoint now);
    void stepOn(TimePoint now);
    void stepBack(TimePoint now);
    void stepOnOrBack(TimePoint now);
    void awaitLanding(TimePoint now) noexcept;
    void wait(Phase phase, std::chrono::milliseconds atMost, TimePoint now) noexcept;
    bool hasLanded(bool hasVideo, TimePoint now) const noexcept;
    void finish(bool finished);

    MpvCore& core_;
    const double frameDuration_;
    Phase phase_ = Phase::idle;
    Operation operation_;
    std::optional<Outcome> outcome_;

    double position_ = 0;
    std::uint64_t remainingSteps_ = 0;
    bool isFirstTime_ = false; // of a step: the time asked for is the one to start from
    bool isCorrecting_ = false;
    double demuxerOffset_ = 0;
    bool hasVideo_ = false;

    std::uint64_t id_ = firstId;
    TimePoint deadline_;
    bool sawSeek_ = false;
    std::optional<TimePoint> restarted_;
    std::uint64_t frameCount_ = 0;
    std::uint64_t framesBeforeCommand_ = 0, framesBeforeSeek_ = 0;
    std::optional<double> reportedTime_;
    bool isAtEnd_ = false;

    static constexpr std::uint64_t firstId = 1000;
};

} // namespace zorvan::avfoundation
