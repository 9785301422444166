#pragma once

#include <utility>

namespace zorvan {

/// Keeps reloads from running inside one another: one asked for during another is done once, after
/// it.
class ReloadGuard {
public:
    template <class Reload>
    void run(const Reload& reload) {
        if (isRunning_) {
            isAskedForAgain_ = true;
            return;
        }
        isRunning_ = true;
        isAskedForAgain_ = false;
        const Finish finish{*this};
        reload();
        if (std::exchange(isAskedForAgain_, false))
            reload();
    }

private:
    struct Finish {
        ReloadGuard& guard;
        ~Finish() { guard.isRunning_ = false; }
    };

    bool isRunning_ = false;
    bool isAskedForAgain_ = false;
};

} // namespace zorvan
