#pragma once

#include <zorvan/platform/avfoundation/MediaPlayer.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

// What stands on libmpv is in a library of its own, which takes a program longer to load than all
// else together.

namespace zorvan::avfoundation {

struct Operation {
    enum class Kind { open, exactSeek, quickSeek, step };

    Kind kind = Kind::open;
    double seconds = 0;     // of a seek
    std::int64_t steps = 0; // of a step; below zero: back
    MediaPlayer::Completion completion = {};

    void complete(bool finished) const {
        if (completion)
            completion(finished);
    }
};

/// What a player passes all on to.
class PlayerEngine {
public:
    virtual ~PlayerEngine() = default;
    virtual MediaPlayer::Status status() const = 0;
    virtual PlaybackClock clock() const = 0;
    virtual double rate() const = 0;
    virtual void setRate(double rate) = 0;
    virtual void add(Operation operation) = 0;
    virtual std::optional<Bitmap> picture() = 0;
};

extern "C" void zorvanMakePlayerEngine(const std::string& path, double frameDuration,
                                       std::weak_ptr<MediaPlayer::Listener> listener,
                                       std::unique_ptr<PlayerEngine>& engine);

} // namespace zorvan::avfoundation
