#include <zorvan/platform/avfoundation/MediaPlayer.h>

#include <zorvan/platform/avfoundation/internal/mpvPlayback.h>
#include <zorvan/platform/foundation/internal/functionBeside.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace zorvan::avfoundation {
namespace {

/// Behind the end of any movie, and far from where sums of times would lose the pictures.
constexpr double farthest = 1e9;

/// Stands for a movie that cannot be played, since there is nothing to play it with.
class FailedPlayer final : public PlayerEngine {
public:
    MediaPlayer::Status status() const override { return MediaPlayer::Status::failed; }
    PlaybackClock clock() const override { return {0, 0, created_}; }
    double rate() const override { return 0; }
    void setRate(double) override {}
    void add(Operation operation) override { operation.complete(false); }
    std::optional<Bitmap> picture() override { return std::nullopt; }

private:
    const PlaybackClock::TimePoint created_ = std::chrono::steady_clock::now();
};

std::unique_ptr<PlayerEngine> makeEngine(const std::string& path, double frameDuration,
                                         std::weak_ptr<MediaPlayer::Listener> listener) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_MPV_PLAYBACK, zorvanMakePlayerEngine);
    std::unique_ptr<PlayerEngine> engine;
    if (make)
        make(path, frameDuration, std::move(listener), engine);
    return engine ? std::move(engine) : std::make_unique<FailedPlayer>();
}

} // namespace

MediaPlayer::MediaPlayer(const std::string& path, double frameDuration,
                         std::weak_ptr<Listener> listener)
    : engine_(makeEngine(path, frameDuration, std::move(listener))) {}

MediaPlayer::~MediaPlayer() = default;

MediaPlayer::Status MediaPlayer::status() const { return engine_->status(); }
PlaybackClock MediaPlayer::clock() const { return engine_->clock(); }
double MediaPlayer::rate() const { return engine_->rate(); }
void MediaPlayer::setRate(double rate) { engine_->setRate(rate); }

void MediaPlayer::seek(double seconds, Precision precision, Completion completion) {
    // NaN goes to the start.
    const double target = seconds > 0 ? std::min(seconds, farthest) : 0;
    engine_->add({.kind = precision == Precision::exact ? Operation::Kind::exactSeek
                                                        : Operation::Kind::quickSeek,
                  .seconds = target,
                  .completion = std::move(completion)});
}

void MediaPlayer::step(std::int64_t count, Completion completion) {
    engine_->add(
        {.kind = Operation::Kind::step, .steps = count, .completion = std::move(completion)});
}

std::optional<Bitmap> MediaPlayer::picture() { return engine_->picture(); }

} // namespace zorvan::avfoundation
