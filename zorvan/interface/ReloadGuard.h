#pragma once

#include <zorvan/platform/foundation/fatalError.h>

namespace zorvan {

/// Keeps reloads from running inside one another: while one is asked for during another, it is done
/// once more after it.
class ReloadGuard {
public:
    /// How many reloads in a row may ask for the next.
    static constexpr int mostReloads = 100;

    /// Stops the program when more reloads than that ask for the next.
    template <class Reload>
    void run(const Reload& reload) {
        if (isRunning_) {
            isAskedForAgain_ = true;
            return;
        }
        isRunning_ = true;
        const Finish finish{*this};
        int reloads = 0;
        do {
            if (++reloads > mostReloads)
                fatalError("The items of a bar asked to be reloaded 100 times in a row.");
            isAskedForAgain_ = false;
            reload();
        } while (isAskedForAgain_);
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
