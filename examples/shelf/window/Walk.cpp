#include "Walk.h"

#include <zorvan/observation/DispatchQueue.h>

#include <atomic>
#include <chrono>
#include <utility>

using namespace zorvan;

struct Walk::State {
    explicit State(Handler told) : handler(std::move(told)) {}

    const Handler handler;
    std::atomic<bool> isEnded{false};

    static void tell(const std::shared_ptr<State>& state, Batch found, bool isLast) {
        DispatchQueue::main()->async([state, found = std::move(found), isLast]() mutable {
            if (!state->isEnded)
                state->handler(std::move(found), isLast);
        });
    }
};

Walk::Walk(Options options, Handler handler) : state_(std::make_shared<State>(std::move(handler))) {
    DispatchQueue::global()->async([state = state_, options = std::move(options)] {
        using Clock = std::chrono::steady_clock;
        constexpr auto pause = std::chrono::milliseconds(100);
        Batch found;
        Clock::time_point told = Clock::now();
        walkFiles(options, [&](const ListedFile& file) {
            found.push_back(lookAt(file));
            if (Clock::now() - told < pause)
                return !state->isEnded;
            State::tell(state, std::exchange(found, {}), false);
            told = Clock::now();
            return !state->isEnded;
        });
        State::tell(state, std::move(found), true);
    });
}

Walk::~Walk() { state_->isEnded = true; }
