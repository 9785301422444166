#include <zorvan/platform/avfoundation/MediaPlayer.h>

#include <zorvan/platform/avfoundation/internal/PlayerEngine.h>

#include <utility>

namespace zorvan::avfoundation {
namespace {

/// Behind the end of any movie, and far from where sums of times would lose the pictures.
constexpr double farthest = 1e9;

} // namespace

MediaPlayer::MediaPlayer(const std::string& path, double frameDuration,
                         std::weak_ptr<Listener> listener)
    : engine_(std::make_unique<Engine>(path, frameDuration, std::move(listener))) {}

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
