// A value loaded in the background, for whoever still wants it.
// Link Zorvan::Observation.

#include <zorvan/observation.h>
#include <zorvan/platform/dispatch/MainQueue.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto queue = NSOperationQueue::create(); // as many at a time as the machine can use
    const auto answer = ValueLoader<int>::create(queue, [] { return std::optional(42); });
    const auto unwanted = ValueLoader<int>::create(queue, [] { return std::optional(0); });

    unwanted->request([] { std::cout << "never\n"; })->cancel(); // scrolled out of sight
    answer->request([&] {                                        // on the main thread
        std::cout << *answer->value() << '\n';
        MainQueue::stop();
    });
    MainQueue::run(); // or the event loop of Qt or GTK
}
