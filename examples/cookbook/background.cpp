// Work in the background, with progress
//
// The window stays alive: work on a queue, what is shown on the main one.
//
// Link Zorvan::Observation.

#include <zorvan/observation/DispatchQueue.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSOperationQueue.h>

#include <iostream>

using namespace zorvan;

int main() {
    const auto queue = NSOperationQueue::create(); // as many at a time as there are cores
    int done = 0;                                  // of the main thread alone, so no lock
    constexpr int pieces = 4;
    for (int piece = 0; piece < pieces; ++piece)
        queue->addOperation([&done] {
            // ... the work ...
            DispatchQueue::main()->async([&done] {
                std::cout << 100 * ++done / pieces << " %\n";
                if (done == pieces)
                    MainQueue::stop();
            });
        });
    MainQueue::run();
}
