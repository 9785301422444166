#include "Walk.h"

#include <zorvan/observation/DispatchQueue.h>

#include <chrono>
#include <utility>

using namespace zorvan;

Walk::Walk(Options options, Handler handler) {
    const auto tell = [isEnded = isEnded_, handler = std::make_shared<const Handler>(
                                               std::move(handler))](Batch found, bool isLast) {
        DispatchQueue::main()->async(
            [isEnded, handler, found = std::move(found), isLast]() mutable {
                if (!*isEnded)
                    (*handler)(std::move(found), isLast);
            });
    };
    DispatchQueue::global()->async([isEnded = isEnded_, tell, options = std::move(options)] {
        using Clock = std::chrono::steady_clock;
        constexpr auto pause = std::chrono::milliseconds(100);
        Batch found;
        Clock::time_point told = Clock::now();
        walkFiles(options, [&](const ListedFile& file) {
            found.push_back(lookAt(file));
            if (Clock::now() - told < pause)
                return !*isEnded;
            tell(std::exchange(found, {}), false);
            told = Clock::now();
            return !*isEnded;
        });
        tell(std::move(found), true);
    });
}
