#pragma once

#include <zorvan/platform/avfoundation/internal/MpvCore.h>
#include <zorvan/platform/avfoundation/internal/OperationRunner.h>
#include <zorvan/platform/avfoundation/internal/mpvPlayback.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

namespace zorvan::avfoundation {

/// The player's thread: it owns the core, passes on what is asked for, and tells the listener.
class MpvPlayer final : public PlayerEngine {
public:
    using Status = MediaPlayer::Status;
    using Listener = MediaPlayer::Listener;

    MpvPlayer(const std::string& path, double frameDuration, std::weak_ptr<Listener> listener);
    ~MpvPlayer() override;

    Status status() const override;
    PlaybackClock clock() const override;
    double rate() const override;
    void setRate(double rate) override;
    void add(Operation operation) override;
    std::optional<Bitmap> picture() override;

private:
    using Lock = std::unique_lock<std::mutex>;

    void wake();
    void run();
    bool waitForWork();
    void handleEvents();
    void handle(const mpv_event& event);
    void handleChange(const mpv_event& event);
    void startNext();
    void handle(OperationRunner::Outcome outcome);
    void drawIfAsked();

    void applyRate();
    void fail();
    void endPlaying();
    void setStatus(Status status);
    void setClock(double seconds, bool isJump);
    /// Moves the waiting operations out and tells them that they were dropped.
    void dropWaiting();

    const std::weak_ptr<Listener> listener_;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isStopping_ = false;
    bool isWoken_ = false;
    bool isRateNew_ = false;
    bool isPictureAsked_ = false;
    std::optional<Bitmap> drawn_;
    std::deque<Operation> waiting_;
    std::deque<Operation> dropped_;
    Status status_ = Status::opening;
    PlaybackClock clock_;
    double rate_ = 0;

    // Of the player's thread alone.
    std::unique_ptr<MpvCore> core_;
    std::unique_ptr<OperationRunner> runner_;
    std::int64_t width_ = 0, height_ = 0;
    std::int64_t turn_ = 0; // clockwise, in degrees, of what is drawn
    bool isAtEnd_ = false;

    std::mutex pictureMutex_; // one asks at a time
    std::thread thread_;
};

} // namespace zorvan::avfoundation
