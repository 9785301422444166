#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace zorvan {

/// That something is told of what other processes change in a store, until it is released or ended;
/// see `NSUserDefaults::follow` and `observe`. Ended on the main thread, it tells nothing from then
/// on, also from within what it tells.
class SettingsObservation {
public:
    /// Ends it.
    ~SettingsObservation() { end(); }
    SettingsObservation(const SettingsObservation&) = delete;
    SettingsObservation& operator=(const SettingsObservation&) = delete;

    /// Nothing is told from now on; a second call does nothing.
    void end() noexcept {
        following_.reset();
        handler_.reset();
    }

private:
    friend class NSUserDefaults;
    SettingsObservation(std::shared_ptr<const void> following,
                        std::shared_ptr<void> handler) noexcept
        : following_(std::move(following)), handler_(std::move(handler)) {}

    std::shared_ptr<const void> following_;
    std::shared_ptr<void> handler_; // which what is queued refers to weakly
};

} // namespace zorvan
