#pragma once

#include <algorithm>
#include <chrono>

namespace zorvan::avfoundation {

/// Where a player is in its movie and how fast it moves on.
struct PlaybackClock {
    using TimePoint = std::chrono::steady_clock::time_point; ///< Of the clock that never goes back.

    /// From the start of the movie, at the moment `at`.
    double seconds = 0;
    /// Seconds of the movie for each second; 0 while it stands still.
    double rate = 0;
    TimePoint at; ///< When `seconds` was true.

    /// The place in the movie at `now`. A clock runs on by itself for a quarter of a second: when
    /// no picture has come for so long, the movie has come to a halt.
    double secondsAt(TimePoint now) const noexcept {
        const std::chrono::duration<double> passed = now - at;
        return seconds + rate * std::clamp(passed.count(), 0.0, 0.25);
    }
};

} // namespace zorvan::avfoundation
