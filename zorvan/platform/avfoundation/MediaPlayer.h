#pragma once

#include <zorvan/platform/avfoundation/PlaybackClock.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zorvan::avfoundation {

class PlayerEngine;

/// Plays one movie or sound file. It opens no window: pictures are asked for.
///
/// The file is opened in the background, paused at its start; seeks and steps asked for meanwhile
/// are done then. They are done one after the other, and a seek drops what still waits. Nothing but
/// the file itself is opened, whatever it asks for, and no settings of the user are read.
///
/// All functions may be called from any thread. Sound goes to the system's default output, or
/// nowhere when there is none.
class MediaPlayer {
public:
    /// Whether the file can be played.
    enum class Status { opening, ready, failed };
    /// How near a seek lands.
    enum class Precision {
        /// The picture that is on show at that time.
        exact,
        /// The nearest place that is quick to reach, at or before that time where there is one.
        quick
    };

    /// Is told of what happens, on the player's own thread. It must not wait for another thread
    /// that uses the player, and not destroy it.
    class Listener {
    public:
        /// Listeners are not owned.
        virtual ~Listener() = default;
        /// The file has been opened, or cannot be played.
        virtual void statusDidChange(Status status) = 0;
        /// The clock was set. A jump is a seek or step that has landed, a start, a stop or another
        /// rate; else playing has moved on as expected.
        virtual void clockDidChange(const PlaybackClock& clock, bool isJump) = 0;
    };

    /// Called once: with true when the player has landed, with false when the seek or step was
    /// dropped or could not be done. On the player's thread, or at once after a failure.
    using Completion = std::function<void(bool finished)>;

    /// `frameDuration` is how long every picture lasts, in seconds, and 0 when that is not known or
    /// differs. Exact seeks are faster when it is given, and wrong when it is too long.
    MediaPlayer(const std::string& path, double frameDuration, std::weak_ptr<Listener> listener);
    /// Stops playing; completions still due are called with false before it returns.
    ~MediaPlayer();
    MediaPlayer(const MediaPlayer&) = delete;
    MediaPlayer& operator=(const MediaPlayer&) = delete;

    /// As it is now.
    Status status() const;
    /// Of what was asked for last, while a seek is under way.
    PlaybackClock clock() const;

    /// The rate asked for; 0 again once the end is reached, and after a failure.
    double rate() const;
    /// 0 pauses. Other rates are kept within 0.01 to 100.
    void setRate(double rate);

    /// Times before the start and behind the end lead there.
    void seek(double seconds, Precision precision, Completion completion);
    /// That many pictures on, or back when `count` is negative, as far as there are any. Playing
    /// goes on from there.
    void step(std::int64_t count, Completion completion);

    /// What is on show, upright, in square pixels; absent before the first picture, and without
    /// video. Waits for it to be drawn.
    std::optional<Bitmap> picture();

private:
    const std::unique_ptr<PlayerEngine> engine_;
};

} // namespace zorvan::avfoundation
